// Throws while it is stopped.
#include <stdexcept>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.stop = [](DalStateChangeReason) -> TevReturnT { throw std::runtime_error("will not"); };
}
