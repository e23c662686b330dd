// Closes every descriptor that is not its own while it is stopped.
#include <unistd.h>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.stop = [](DalStateChangeReason) {
        for (int descriptor = STDERR_FILENO + 1; descriptor < 100; ++descriptor) {
            close(descriptor);
        }
        return TevReturnT{TevReturnOk};
    };
}
