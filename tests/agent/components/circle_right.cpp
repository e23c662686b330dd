// Depends on circle_left, which depends on this one.
#define COMPONENT_NAME "RightService"
#include "EntryPoints.h"

static DalMgmtSpiInterface_1 offered = {"RightService", "Right", "1"};
static DalMgmtSpiInterface_1 wanted = {"LeftService", "Left", "1"};

void damage(GoodComponent& component) {
    component.offers[2] = &offered;
    component.dependencies[1] = &wanted;
}
