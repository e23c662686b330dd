// Offers managed objects in a version that the agent does not know.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.base.interfaceVersion = "7";
}
