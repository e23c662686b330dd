// Does not start a third time.
#include "EntryPoints.h"

static int starts = 0;

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        return starts++ < 2 ? GoodComponent::start(reason) : TevReturnT{-5};
    };
}
