// Leaves its process group while it is started, and does not return.
#include <unistd.h>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason) -> TevReturnT {
        setpgid(0, getpgid(getppid()));
        while (true) {
            pause();
        }
    };
}
