// Has no array of interfaces.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.component.interfaceArray = nullptr;
}
