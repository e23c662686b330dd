// Cannot be stopped when it is stopped already.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.stop = [](DalStateChangeReason reason) {
        return GoodComponent::current->isStarted ? GoodComponent::stop(reason) : TevReturnT{-5};
    };
}
