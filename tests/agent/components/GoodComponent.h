#ifndef GOOD_COMPONENT_H
#define GOOD_COMPONENT_H

#include <atomic>
#include <cstdint>
#include <cstring>
#include <deque>
#include <iterator>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "DalMgmtSpiComponent.h"
#include "DalOamSpiManagedObject.h"
#include "DalOamSpiTransaction.h"
#include "DalPortal.h"

/// A component that does everything right: it stands in for the owner of the class Schema and has two instances, "one"
/// and "two", whose attributes all have the value "value". Each source file of this folder changes one thing in it.
class GoodComponent {
public:
    explicit GoodComponent(const char* name = "TevSchemaMoService") {
        component = {{name, "DalMgmtSpiComponent", "2"}, offers, dependencies, start, stop, extras, false};
        resource = {{name, "DalOamSpiTransactionalResource", "2"}, join, done, done, done, finish, validate};
        objects = {
            {name, "DalOamSpiManagedObject", "1"},
            [](unsigned long, const char*, const char*, DalMoAttributeValueContainer*) { return refused; },
            getMoAttribute,
            newMoIterator,
            nextMo,
            [](unsigned long, const char*, const char*, const char*, DalMoAttributeValueContainer*) { return refused; },
            [](unsigned long, const char*) { return refused; },
            [](unsigned long, const char*, const char*, DalMoAttributeValueContainer**,
               DalMoAttributeValueContainer**) { return refused; }};
    }

    TevReturnT registerWith(DalPortalAccessor* accessor) {
        current = this;
        portal = static_cast<DalPortal_3*>(accessor->getPortal("3"));
        return portal == nullptr ? refused : portal->registerComponent(&component);
    }

    void unregister() { portal->unregisterComponent(&component); }

    template <class Table>
    Table* find(const char* componentName, const char* interfaceName, const char* version) const {
        void* found = nullptr;
        portal->getInterface(componentName, interfaceName, version, &found);
        return static_cast<Table*>(found);
    }

    static constexpr TevReturnT refused = TevReturnFailure;
    static constexpr const char* someDn = "ManagedElement=1,SysM=1,Schema=one";
    inline static GoodComponent* current = nullptr;

    DalMgmtSpiInterface_1 portalInterface = {"DalPortalService", "DalPortal", "3"};
    DalMgmtSpiComponent_2 component{};
    DalOamSpiTransactionalResource_2 resource{};
    DalOamSpiManagedObject_1 objects{};
    DalMgmtSpiInterface_1* offers[4] = {&resource.base, &objects.base, nullptr, nullptr};
    DalMgmtSpiInterface_1* dependencies[3] = {&portalInterface, nullptr, nullptr};
    DalMgmtSpiInterface_1* extras[2] = {nullptr, nullptr};
    std::vector<std::string> keys = {"one", "two"};
    std::atomic<bool> isStarted{false};

    /// What is handed out in a transaction, and who asked for it first.
    struct Memory {
        std::thread::id thread = std::this_thread::get_id();
        std::deque<std::string> texts;
        std::deque<DalMoAttributeValue> values;
        std::deque<DalMoAttributeValueContainer> containers;
    };

    struct Iterator {
        std::thread::id thread = std::this_thread::get_id();
        unsigned long txHandle = 0;
        std::size_t next = 0;
    };

    std::mutex mutex;
    std::map<unsigned long, Memory> memories;
    std::map<void*, Iterator> iterators;
    std::uintptr_t lastIterator = 0;

    /// A copy that lives as long as the transaction; the mutex is locked.
    char* copy(unsigned long txHandle, const std::string& text) {
        return memories[txHandle].texts.emplace_back(text).data();
    }

    bool hasInstance(const char* dn) const {
        const char* const key = std::strrchr(dn, '=') + 1;
        for (const std::string& known : keys) {
            if (known == key) {
                return true;
            }
        }
        return false;
    }

    static bool isSchemaDn(const char* dn) {
        const char* const parent = std::strstr(dn, ",SysM=");
        return parent != nullptr && std::strstr(parent, ",Schema=") != nullptr;
    }

    static bool hasAttribute(const char* name) {
        for (const char* const known :
             {"schemaId", "identifier", "baseModelIdentifier", "version", "baseModelVersion", "selectedModelOptions"}) {
            if (std::strcmp(name, known) == 0) {
                return true;
            }
        }
        return false;
    }

    static TevReturnT start(DalStateChangeReason) {
        current->isStarted = true;
        return TevReturnOk;
    }

    static TevReturnT stop(DalStateChangeReason) {
        current->isStarted = false;
        return TevReturnOk;
    }

    static TevReturnT join(unsigned long txHandle) {
        auto* const service =
            current->find<DalOamSpiTransaction_2>("DalOamSpiTransactionService", "DalOamSpiTransaction", "2");
        return current->isStarted ? service->registerParticipant(txHandle, &current->resource) : TevReturnNotStarted;
    }

    static TevReturnT done(unsigned long) { return TevReturnOk; }

    static TevReturnT finish(unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(current->mutex);
        current->memories.erase(txHandle);
        for (auto one = current->iterators.begin(); one != current->iterators.end();) {
            one = one->second.txHandle == txHandle ? current->iterators.erase(one) : std::next(one);
        }
        return TevReturnOk;
    }

    static TevReturnT validate(unsigned long, bool* result) {
        *result = true;
        return TevReturnOk;
    }

    static TevReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attribute,
                                     DalMoAttributeValueContainer** result) {
        if (dn == nullptr || attribute == nullptr || result == nullptr) {
            return TevReturnInvalidArgument;
        }
        if (!current->isStarted) {
            return TevReturnNotStarted;
        }
        if (!isSchemaDn(dn)) {
            return refused;
        }
        if (!current->hasInstance(dn) || !hasAttribute(attribute)) {
            return TevReturnNotFound;
        }
        *result = current->valueFor(txHandle);
        return TevReturnOk;
    }

    DalMoAttributeValueContainer* valueFor(unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(mutex);
        Memory& memory = memories[txHandle];
        memory.values.push_back({copy(txHandle, "value")});
        return &memory.containers.emplace_back(DalMoAttributeValueContainer{DalMoTypeString, 1, &memory.values.back()});
    }

    static TevReturnT newMoIterator(unsigned long txHandle, const char* parent, const char* className,
                                    void** iterator) {
        if (parent == nullptr || className == nullptr || iterator == nullptr) {
            return TevReturnInvalidArgument;
        }
        if (!current->isStarted) {
            return TevReturnNotStarted;
        }
        if (std::strcmp(className, "Schema") != 0 || std::strstr(parent, ",SysM=") == nullptr) {
            return refused;
        }
        const std::lock_guard<std::mutex> lock(current->mutex);
        *iterator = reinterpret_cast<void*>(++current->lastIterator);
        current->iterators[*iterator].txHandle = txHandle;
        return TevReturnOk;
    }

    static TevReturnT nextMo(void* iterator, char** result) {
        if (result == nullptr) {
            return TevReturnInvalidArgument;
        }
        if (!current->isStarted) {
            return TevReturnNotStarted;
        }
        const std::lock_guard<std::mutex> lock(current->mutex);
        const auto found = current->iterators.find(iterator);
        if (found == current->iterators.end()) {
            return refused;
        }
        Iterator& position = found->second;
        const bool isAtEnd = position.next == current->keys.size();
        *result = isAtEnd ? nullptr : current->copy(position.txHandle, current->keys[position.next++]);
        return TevReturnOk;
    }

    DalPortal_3* portal = nullptr;
};

#endif
