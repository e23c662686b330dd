// Cannot be stopped when its start failed for want of a service.
#include "EntryPoints.h"

static bool hasService() {
    return GoodComponent::current->find<void>("DalPortalService", "DalPortal", "3") != nullptr;
}

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        return hasService() ? GoodComponent::start(reason) : TevReturnT{-5};
    };
    component.component.stop = [](DalStateChangeReason reason) {
        return hasService() ? GoodComponent::stop(reason) : TevReturnT{-5};
    };
}
