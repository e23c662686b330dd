// Does not initialize itself and says so.
#include "DalPortal.h"

__attribute__((visibility("default"))) TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration);
__attribute__((visibility("default"))) void dalLCMterminate(void);

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration) {
    (void)accessor;
    (void)configuration;
    return -17;
}

void dalLCMterminate(void) {}
