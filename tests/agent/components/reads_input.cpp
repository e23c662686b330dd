// Starts only when there is nothing to read on standard input.
#include <unistd.h>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        char byte = 0;
        return read(STDIN_FILENO, &byte, 1) == 0 ? GoodComponent::start(reason) : GoodComponent::refused;
    };
}
