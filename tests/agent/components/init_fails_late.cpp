// Is registered, but says then that it could not be initialized.
#include "GoodComponent.h"

static GoodComponent good;

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    good.registerWith(accessor);
    return -17;
}

void dalLCMterminate() {}
