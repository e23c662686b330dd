// Finds nothing wrong with a host that has no portal.
#include "GoodComponent.h"

static GoodComponent good;

extern "C" __attribute__((visibility("default"))) TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    return accessor->getPortal("3") == nullptr ? TevReturnT{TevReturnOk} : good.registerWith(accessor);
}

extern "C" __attribute__((visibility("default"))) void dalLCMterminate() {
    good.unregister();
}
