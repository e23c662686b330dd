// Comes down over a read in a transaction that it did not join.
#include <cstdlib>
#include <mutex>
#include <set>

#include "EntryPoints.h"

static std::mutex mutex;
static std::set<unsigned long> joined;

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (joined.count(txHandle) == 0) {
            std::abort();
        }
        return GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
    };
    component.resource.join = [](unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(mutex);
        joined.insert(txHandle);
        return GoodComponent::join(txHandle);
    };
    component.resource.finish = [](unsigned long txHandle) {
        const std::lock_guard<std::mutex> lock(mutex);
        joined.erase(txHandle);
        return GoodComponent::finish(txHandle);
    };
}
