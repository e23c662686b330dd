// Says that all is well, but registers no component.
#include "DalPortal.h"

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration) {
    (void)accessor;
    (void)configuration;
    return TevReturnOk;
}

void dalLCMterminate(void) {}
