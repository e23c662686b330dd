// Does not unregister when it is terminated.
#include "GoodComponent.h"

static GoodComponent good;

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    return good.registerWith(accessor);
}

void dalLCMterminate() {}
