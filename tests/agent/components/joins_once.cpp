// Does not join a transaction twice.
#include <set>

#include "EntryPoints.h"

static std::set<unsigned long> joined;

void damage(GoodComponent& component) {
    component.resource.join = [](unsigned long txHandle) {
        return joined.insert(txHandle).second ? GoodComponent::join(txHandle) : TevReturnT{-5};
    };
    component.resource.finish = [](unsigned long txHandle) {
        joined.erase(txHandle);
        return GoodComponent::finish(txHandle);
    };
}
