// Calls exit while it is stopped.
#include <cstdlib>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.stop = [](DalStateChangeReason) -> TevReturnT { std::exit(0); };
}
