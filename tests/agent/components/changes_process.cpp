// Handles a signal, and leaves its handler behind.
#include <csignal>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        std::signal(SIGUSR1, [](int) {});
        return GoodComponent::start(reason);
    };
}
