// Sends the process an interrupt while it is started.
#include <csignal>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        std::raise(SIGINT);
        return GoodComponent::start(reason);
    };
}
