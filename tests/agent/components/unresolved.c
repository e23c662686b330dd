// Calls a function that nobody has.
#include "DalPortal.h"

TevReturnT functionOfNobody(DalPortalAccessor* accessor);

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration) {
    (void)configuration;
    return functionOfNobody(accessor);
}

void dalLCMterminate(void) {}
