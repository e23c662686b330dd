// Can be initialized only once in its life.
#include "GoodComponent.h"

static GoodComponent good;
static bool isInitialized = false;

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    if (isInitialized) {
        return -17;
    }
    isInitialized = true;
    return good.registerWith(accessor);
}

void dalLCMterminate() {
    good.unregister();
}
