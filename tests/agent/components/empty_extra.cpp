// Has an entry without texts in its third array.
#include "EntryPoints.h"

static DalMgmtSpiInterface_1 empty = {"", "", ""};

void damage(GoodComponent& component) {
    component.extras[0] = &empty;
}
