// Does not start. Says on standard output when it is stopped.
#include <cstdio>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason) { return TevReturnT{-5}; };
    component.component.stop = [](DalStateChangeReason) {
        std::puts("stopped all the same");
        std::fflush(stdout);
        return TevReturnT{TevReturnOk};
    };
}
