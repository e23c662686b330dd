// Is no owner of the class Schema. Asks the portal for the owner's table when it is terminated, and says on standard
// output whether it was found.
#include <cstdio>

#include "GoodComponent.h"

static GoodComponent good("EarlyService");

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    return good.registerWith(accessor);
}

void dalLCMterminate() {
    const auto* const table = good.find<DalOamSpiManagedObject_1>("TevSchemaMoService", "DalOamSpiManagedObject", "1");
    std::puts(table == nullptr ? "not found" : "found");
    std::fflush(stdout);
    good.unregister();
}
