// Lacks the entry point dalLCMterminate.
#include "DalPortal.h"

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration) {
    (void)accessor;
    (void)configuration;
    return TevReturnOk;
}
