// Joins transactions that are not there.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.join = [](unsigned long txHandle) {
        const TevReturnT code = GoodComponent::join(txHandle);
        return code == TevReturnNotFound ? TevReturnT{TevReturnOk} : code;
    };
}
