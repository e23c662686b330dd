// Lacks the entry point dalLCMterminate.
#include "DalPortal.h"

__attribute__((visibility("default"))) TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration);

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration) {
    (void)accessor;
    (void)configuration;
    return TevReturnOk;
}
