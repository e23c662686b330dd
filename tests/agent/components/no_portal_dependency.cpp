// Does not depend on the portal.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.dependencies[0] = nullptr;
}
