// Has an entry without a version in its third array.
#include "EntryPoints.h"

static DalMgmtSpiInterface_1 extra = {"SomeService", "Something", nullptr};

void damage(GoodComponent& component) {
    component.extras[0] = &extra;
}
