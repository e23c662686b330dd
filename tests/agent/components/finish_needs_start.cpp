// Finishes no transaction once it is stopped.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.finish = [](unsigned long txHandle) {
        return GoodComponent::current->isStarted ? GoodComponent::finish(txHandle) : TevReturnT{TevReturnNotStarted};
    };
}
