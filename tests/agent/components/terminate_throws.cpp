// Throws when it is terminated, before it has unregistered.
#include <stdexcept>

#include "GoodComponent.h"

static GoodComponent good;

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    return good.registerWith(accessor);
}

void dalLCMterminate() {
    throw std::runtime_error("too late");
}
