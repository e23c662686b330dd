// Does not join a transaction twice.
#include <mutex>
#include <set>

#include "EntryPoints.h"

static std::mutex mutex;
static std::set<unsigned long> joined;

void damage(GoodComponent& component) {
    component.resource.join = [](unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(mutex);
        return joined.insert(txHandle).second ? GoodComponent::join(txHandle) : TevReturnT{-5};
    };
    component.resource.finish = [](unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(mutex);
        joined.erase(txHandle);
        return GoodComponent::finish(txHandle);
    };
}
