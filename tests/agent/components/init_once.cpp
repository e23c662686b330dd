// Can be initialized only once in its life.
#include "GoodComponent.h"

static GoodComponent good;
static bool isInitialized = false;

extern "C" __attribute__((visibility("default"))) TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    if (isInitialized) {
        return -17;
    }
    isInitialized = true;
    return good.registerWith(accessor);
}

extern "C" __attribute__((visibility("default"))) void dalLCMterminate() {
    good.unregister();
}
