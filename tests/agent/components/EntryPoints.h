#ifndef ENTRY_POINTS_H
#define ENTRY_POINTS_H

#include "GoodComponent.h"

/// What is wrong with this component: each source file's own.
static void damage(GoodComponent& good);

#ifndef COMPONENT_NAME
#define COMPONENT_NAME "TevSchemaMoService"
#endif

static GoodComponent good(COMPONENT_NAME);

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    damage(good);
    return good.registerWith(accessor);
}

void dalLCMterminate() {
    good.unregister();
}

#endif
