// Depends on circle_right, which depends on this one.
#define COMPONENT_NAME "LeftService"
#include "EntryPoints.h"

static DalMgmtSpiInterface_1 offered = {"LeftService", "Left", "1"};
static DalMgmtSpiInterface_1 wanted = {"RightService", "Right", "1"};

void damage(GoodComponent& component) {
    component.offers[2] = &offered;
    component.dependencies[1] = &wanted;
}
