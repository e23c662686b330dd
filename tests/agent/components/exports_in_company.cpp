// Has six instances, "0" to "5". An export waits until two are under way, and fails where there are more. The third
// one fails anyhow. Each leaves a message that names its DN.
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>
#include <string>

#include "DalMgmtSpiThreadContext.h"
#include "EntryPoints.h"

static std::mutex mutex;
static std::condition_variable isChanged;
static int underWay = 0;
static int met = 0;
static std::set<unsigned long> transactions;

static void post(const std::string& text) {
    GoodComponent::current
        ->find<DalMgmtSpiThreadContext_2>("DalMgmtSpiThreadContextService", "DalMgmtSpiThreadContext", "2")
        ->addMessage(1, text.c_str());
}

/// Whether two were under way while this one was, and no third one came.
static bool meetAnother() {
    std::unique_lock<std::mutex> lock(mutex);
    ++underWay;
    // They leave in pairs, so that each has met one.
    const int pair = met / 2;
    ++met;
    isChanged.notify_all();
    const bool isMet = isChanged.wait_for(lock, std::chrono::seconds(30), [pair] { return met / 2 > pair; });
    const bool isCrowd = isChanged.wait_for(lock, std::chrono::milliseconds(50), [] { return underWay > 2; });
    --underWay;
    return isMet && !isCrowd;
}

static TevReturnT actInCompany(unsigned long txHandle, const char* dn, const char*, DalMoAttributeValueContainer**,
                               DalMoAttributeValueContainer** result) {
    static DalMoAttributeValueContainer nothing = {DalMoTypeVoid, 0, nullptr};
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!transactions.insert(txHandle).second) {
            post("not a transaction of its own");
            return -1;
        }
    }
    const bool isInCompany = meetAnother();
    post(std::string(isInCompany ? "two at a time" : "alone or in a crowd") + " for " + dn);
    *result = &nothing;
    return isInCompany && std::string(dn).back() != '2' ? TevReturnOk : -1;
}

void damage(GoodComponent& component) {
    component.objects.action = actInCompany;
    component.keys = {"0", "1", "2", "3", "4", "5"};
}
