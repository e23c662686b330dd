// Finds every transaction invalid.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.validate = [](unsigned long, bool* result) {
        *result = false;
        return TevReturnT{TevReturnOk};
    };
}
