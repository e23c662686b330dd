// Never returns from stop.
#include <unistd.h>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.stop = [](DalStateChangeReason) -> TevReturnT {
        while (true) {
            pause();
        }
    };
}
