// Says that all is well, but registers no component.
#include "DalPortal.h"

__attribute__((visibility("default"))) TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration);
__attribute__((visibility("default"))) void dalLCMterminate(void);

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration) {
    (void)accessor;
    (void)configuration;
    return TevReturnOk;
}

void dalLCMterminate(void) {}
