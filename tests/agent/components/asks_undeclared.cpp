// Asks for a service at start that it does not depend on.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        GoodComponent::current->find<void>("DalOamSpiCmRouterService", "DalOamSpiManagedObject", "1");
        return GoodComponent::start(reason);
    };
}
