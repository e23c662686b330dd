// Registers in a version that the agent does not know.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.base.interfaceVersion = "3";
}
