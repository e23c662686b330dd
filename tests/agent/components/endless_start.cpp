// Never returns from start. Says on standard output when it is there.
#include <unistd.h>

#include <cstdio>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason) -> TevReturnT {
        std::puts("starting");
        std::fflush(stdout);
        while (true) {
            pause();
        }
    };
}
