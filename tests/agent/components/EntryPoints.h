#ifndef ENTRY_POINTS_H
#define ENTRY_POINTS_H

#include "GoodComponent.h"

#define TEV_ENTRY_POINT extern "C" __attribute__((visibility("default")))

/// What is wrong with this component: each source file's own.
static void damage(GoodComponent& good);

#ifndef COMPONENT_NAME
#define COMPONENT_NAME "TevSchemaMoService"
#endif

static GoodComponent good(COMPONENT_NAME);

TEV_ENTRY_POINT TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    damage(good);
    return good.registerWith(accessor);
}

TEV_ENTRY_POINT void dalLCMterminate() {
    good.unregister();
}

#endif
