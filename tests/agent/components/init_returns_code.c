// Does not initialize itself and says so.
#include "DalPortal.h"

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration) {
    (void)accessor;
    (void)configuration;
    return -17;
}

void dalLCMterminate(void) {}
