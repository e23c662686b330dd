// Is registered, but says then that it could not be initialized.
#include "GoodComponent.h"

static GoodComponent good;

extern "C" __attribute__((visibility("default"))) TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    good.registerWith(accessor);
    return -17;
}

extern "C" __attribute__((visibility("default"))) void dalLCMterminate() {}
