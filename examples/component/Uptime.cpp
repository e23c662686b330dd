// A component in one file. It publishes how long the system has been up: the class Uptime, with one instance under each
// ManagedElement and the attribute "seconds".
#include <sys/sysinfo.h>

#include <atomic>
#include <cstring>
#include <list>
#include <map>
#include <mutex>
#include <string>

#include "DalMgmtSpiComponent.h"
#include "DalOamSpiManagedObject.h"
#include "DalOamSpiTransaction.h"
#include "DalPortal.h"

namespace {

constexpr const char* componentName = "UptimeService";
char onlyKey[] = "1";

struct Reading {
    DalMoAttributeValue value;
    DalMoAttributeValueContainer container;
};

struct Listing {
    bool isAtEnd = false;
};

/// What was handed out in one transaction: it stays where it is until the transaction finishes.
struct Memory {
    std::list<Reading> readings;
    std::list<Listing> listings;
};

std::atomic<bool> isStarted{false};
DalPortal_3* portal = nullptr;
DalOamSpiTransaction_2* transactionService = nullptr;
std::mutex mutex;  // guards the memories: transactions may run in several threads
std::map<unsigned long, Memory> memories;

bool isParent(const char* dn) {
    return std::strncmp(dn, "ManagedElement=", 15) == 0 && std::strchr(dn, ',') == nullptr;
}

bool isDnOfClass(const std::string& dn) {
    const std::size_t comma = dn.rfind(',');
    return comma != std::string::npos && isParent(dn.substr(0, comma).c_str()) &&
           dn.compare(comma + 1, 7, "Uptime=") == 0;
}

TevReturnT join(unsigned long txHandle);

TevReturnT succeed(unsigned long) {
    return TevReturnOk;
}

TevReturnT finish(unsigned long txHandle) {
    const std::lock_guard<std::mutex> lock(mutex);
    memories.erase(txHandle);
    return TevReturnOk;
}

TevReturnT validate(unsigned long, bool* result) {
    *result = true;
    return TevReturnOk;
}

TevReturnT setMoAttribute(unsigned long, const char*, const char*, DalMoAttributeValueContainer*) {
    return TevReturnFailure;
}

TevReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attribute,
                          DalMoAttributeValueContainer** result) {
    if (dn == nullptr || attribute == nullptr || result == nullptr) {
        return TevReturnInvalidArgument;
    }
    if (!isStarted) {
        return TevReturnNotStarted;
    }
    if (!isDnOfClass(dn)) {
        return TevReturnFailure;
    }
    if (std::strcmp(std::strrchr(dn, '=') + 1, onlyKey) != 0 || std::strcmp(attribute, "seconds") != 0) {
        return TevReturnNotFound;
    }
    struct sysinfo system {};
    sysinfo(&system);
    const std::lock_guard<std::mutex> lock(mutex);
    Reading& reading = memories[txHandle].readings.emplace_back();
    reading.value.theUint64 = static_cast<std::uint64_t>(system.uptime);
    reading.container = {DalMoTypeUint64, 1, &reading.value};
    *result = &reading.container;
    return TevReturnOk;
}

TevReturnT newMoIterator(unsigned long txHandle, const char* parentDn, const char* className, void** iterator) {
    if (parentDn == nullptr || className == nullptr || iterator == nullptr) {
        return TevReturnInvalidArgument;
    }
    if (!isStarted) {
        return TevReturnNotStarted;
    }
    if (!isParent(parentDn) || std::strcmp(className, "Uptime") != 0) {
        return TevReturnFailure;
    }
    const std::lock_guard<std::mutex> lock(mutex);
    *iterator = &memories[txHandle].listings.emplace_back();
    return TevReturnOk;
}

TevReturnT nextMo(void* iterator, char** result) {
    if (result == nullptr) {
        return TevReturnInvalidArgument;
    }
    if (!isStarted) {
        return TevReturnNotStarted;
    }
    const std::lock_guard<std::mutex> lock(mutex);
    for (auto& [txHandle, memory] : memories) {
        for (Listing& listing : memory.listings) {
            if (&listing == iterator) {
                *result = listing.isAtEnd ? nullptr : onlyKey;
                listing.isAtEnd = true;
                return TevReturnOk;
            }
        }
    }
    return TevReturnFailure;
}

TevReturnT createMo(unsigned long, const char*, const char*, const char*, DalMoAttributeValueContainer*) {
    return TevReturnFailure;
}

TevReturnT deleteMo(unsigned long, const char*) {
    return TevReturnFailure;
}

TevReturnT action(unsigned long, const char*, const char*, DalMoAttributeValueContainer**,
                  DalMoAttributeValueContainer**) {
    return TevReturnInvalidArgument;
}

TevReturnT start(DalStateChangeReason) {
    void* found = nullptr;
    const TevReturnT code = portal->getInterface("DalOamSpiTransactionService", "DalOamSpiTransaction", "2", &found);
    transactionService = static_cast<DalOamSpiTransaction_2*>(found);
    isStarted = code == TevReturnOk;
    return code;
}

TevReturnT stop(DalStateChangeReason) {
    isStarted = false;
    return TevReturnOk;
}

// What the framework is told at registration: the tables that are offered, and what has to be there before a start.
DalOamSpiTransactionalResource_2 resource = {
    {componentName, "DalOamSpiTransactionalResource", "2"}, join, succeed, succeed, succeed, finish, validate};
DalOamSpiManagedObject_1 objects = {{componentName, "DalOamSpiManagedObject", "1"},
                                    setMoAttribute,
                                    getMoAttribute,
                                    newMoIterator,
                                    nextMo,
                                    createMo,
                                    deleteMo,
                                    action};
DalMgmtSpiInterface_1 portalId = {"DalPortalService", "DalPortal", "3"};
DalMgmtSpiInterface_1 transactionId = {"DalOamSpiTransactionService", "DalOamSpiTransaction", "2"};
DalMgmtSpiInterface_1* offers[] = {&resource.base, &objects.base, nullptr};
DalMgmtSpiInterface_1* dependencies[] = {&portalId, &transactionId, nullptr};
DalMgmtSpiInterface_1* extras[] = {nullptr};
DalMgmtSpiComponent_2 component = {
    {componentName, "DalMgmtSpiComponent", "2"}, offers, dependencies, start, stop, extras, false};

TevReturnT join(unsigned long txHandle) {
    return isStarted ? transactionService->registerParticipant(txHandle, &resource) : TevReturnNotStarted;
}

}  // namespace

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    portal = static_cast<DalPortal_3*>(accessor->getPortal("3"));
    return portal == nullptr ? TevReturnFailure : portal->registerComponent(&component);
}

void dalLCMterminate() {
    portal->unregisterComponent(&component);
}
