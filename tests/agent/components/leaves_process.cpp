// Starts a process in a session of its own while it is started, and leaves it behind.
#include <unistd.h>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        if (fork() == 0) {
            setsid();
            execlp("sleep", "sleep", "1000", nullptr);
            _exit(1);
        }
        return GoodComponent::start(reason);
    };
}
