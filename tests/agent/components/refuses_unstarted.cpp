// Does not tell that it is not started, but refuses to join.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.join = [](unsigned long txHandle) {
        const TevReturnT code = GoodComponent::join(txHandle);
        return code == TevReturnNotStarted ? GoodComponent::refused : code;
    };
}
