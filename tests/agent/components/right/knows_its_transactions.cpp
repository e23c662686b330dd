// Answers in no transaction that it has not joined, and does not finish one either.
#include <set>

#include "../EntryPoints.h"

static std::mutex mutex;
static std::set<unsigned long> joined;

static bool hasJoined(unsigned long txHandle) {
    const std::lock_guard<std::mutex> lock(mutex);
    return joined.count(txHandle) != 0;
}

void damage(GoodComponent& component) {
    component.resource.join = [](unsigned long txHandle) {
        const TevReturnT code = GoodComponent::join(txHandle);
        const std::lock_guard<std::mutex> lock(mutex);
        if (code == TevReturnOk) {
            joined.insert(txHandle);
        }
        return code;
    };
    component.resource.finish = [](unsigned long txHandle) {
        if (!hasJoined(txHandle)) {
            return TevReturnT{TevReturnNotFound};
        }
        const std::lock_guard<std::mutex> lock(mutex);
        joined.erase(txHandle);
        return GoodComponent::finish(txHandle);
    };
    component.objects.newMoIterator = [](unsigned long txHandle, const char* parent, const char* className,
                                         void** iterator) {
        return hasJoined(txHandle) ? GoodComponent::newMoIterator(txHandle, parent, className, iterator)
                                   : TevReturnT{TevReturnNotFound};
    };
}
