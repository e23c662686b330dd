// Does not unregister when it is terminated.
#include "GoodComponent.h"

static GoodComponent good;

extern "C" __attribute__((visibility("default"))) TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    return good.registerWith(accessor);
}

extern "C" __attribute__((visibility("default"))) void dalLCMterminate() {}
