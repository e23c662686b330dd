// Says something in the agent's name, and calls exit while it is started.
#include <cstdio>
#include <cstdlib>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason) -> TevReturnT {
        std::fputs("tev-agent: all is well\n", stderr);
        std::exit(0);
    };
}
