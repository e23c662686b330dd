// Finds nothing wrong with a host that has no portal.
#include "GoodComponent.h"

static GoodComponent good;

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    return accessor->getPortal("3") == nullptr ? TevReturnT{TevReturnOk} : good.registerWith(accessor);
}

void dalLCMterminate() {
    good.unregister();
}
