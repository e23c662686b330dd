// Has a dependency without an interface name.
#include "EntryPoints.h"

static DalMgmtSpiInterface_1 wanted = {"SomeService", nullptr, "4"};

void damage(GoodComponent& component) {
    component.dependencies[1] = &wanted;
}
