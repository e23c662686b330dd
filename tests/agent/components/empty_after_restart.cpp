// Forgets its instances when it is stopped.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.stop = [](DalStateChangeReason reason) {
        GoodComponent::current->keys.clear();
        return GoodComponent::stop(reason);
    };
}
