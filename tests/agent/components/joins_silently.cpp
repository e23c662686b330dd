// Joins transactions without telling the transaction service.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.join = [](unsigned long) {
        return TevReturnT{GoodComponent::current->isStarted ? TevReturnOk : TevReturnNotStarted};
    };
}
