// Right, but it has a process at its service that its own parent has left, and reads only while that lives.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "EntryPoints.h"

static pid_t helper;

/// The id of a process that waits for its end.
static pid_t startHelper() {
    int ends[2];
    if (pipe(ends) != 0) {
        return -1;
    }
    const pid_t parent = fork();
    if (parent == 0) {
        const pid_t id = fork();
        while (id == 0) {
            pause();
        }
        _exit(write(ends[1], &id, sizeof id) == sizeof id ? 0 : 1);
    }
    pid_t id = -1;
    const bool isTold = read(ends[0], &id, sizeof id) == sizeof id;
    waitpid(parent, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    return isTold ? id : -1;
}

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        helper = startHelper();
        return GoodComponent::start(reason);
    };
    component.component.stop = [](DalStateChangeReason reason) {
        kill(helper, SIGKILL);
        return GoodComponent::stop(reason);
    };
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        return kill(helper, 0) == 0 ? GoodComponent::getMoAttribute(txHandle, dn, attribute, result)
                                    : GoodComponent::refused;
    };
}
