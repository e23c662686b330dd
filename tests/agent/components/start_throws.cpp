// Throws while it is started.
#include <stdexcept>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason) -> TevReturnT { throw std::runtime_error("out of order"); };
}
