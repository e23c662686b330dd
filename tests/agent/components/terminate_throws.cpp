// Throws when it is terminated, before it has unregistered.
#include <stdexcept>

#include "GoodComponent.h"

static GoodComponent good;

extern "C" __attribute__((visibility("default"))) TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    return good.registerWith(accessor);
}

extern "C" __attribute__((visibility("default"))) void dalLCMterminate() {
    throw std::runtime_error("too late");
}
