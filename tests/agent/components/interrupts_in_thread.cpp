// Sends the process an interrupt when it joins a transaction in another thread than the one that started it.
#include <csignal>
#include <thread>

#include "EntryPoints.h"

static std::thread::id starter;

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        starter = std::this_thread::get_id();
        return GoodComponent::start(reason);
    };
    component.resource.join = [](unsigned long txHandle) {
        if (std::this_thread::get_id() != starter) {
            std::raise(SIGINT);
        }
        return GoodComponent::join(txHandle);
    };
}
