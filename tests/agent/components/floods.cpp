// Writes on standard error for ever while it is started.
#include <unistd.h>

#include <string>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason) -> TevReturnT {
        const std::string text(1048576, '-');
        while (write(STDERR_FILENO, text.data(), text.size()) != 0) {
        }
        return TevReturnOk;
    };
}
