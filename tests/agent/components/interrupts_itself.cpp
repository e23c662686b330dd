// Sends the process an interrupt while it is started.
#include <csignal>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason) {
        std::raise(SIGINT);
        return TevReturnT{TevReturnOk};
    };
}
