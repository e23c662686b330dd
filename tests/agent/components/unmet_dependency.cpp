// Depends on what nobody offers.
#include "EntryPoints.h"

static DalMgmtSpiInterface_1 wanted = {"NobodysService", "Nothing", "4"};

void damage(GoodComponent& component) {
    component.dependencies[1] = &wanted;
}
