// Leaves a descriptor open at each start.
#include <fcntl.h>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.start = [](DalStateChangeReason reason) {
        static_cast<void>(open("/dev/null", O_RDONLY | O_CLOEXEC));
        return GoodComponent::start(reason);
    };
}
