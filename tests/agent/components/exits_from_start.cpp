// Calls exit while it is started, and tells why on standard output.
#include <cstdio>
#include <cstdlib>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason) -> TevReturnT {
        std::puts("no licence");
        std::exit(0);
    };
}
