// Can be initialized only once in the life of its process, however often it is loaded.
#include <cstdlib>

#include "GoodComponent.h"

static GoodComponent good;
static bool isFirst = false;

extern "C" __attribute__((visibility("default"))) TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    if (!isFirst && std::getenv("COMPONENT_HAS_LIVED") != nullptr) {
        return -17;
    }
    isFirst = true;
    setenv("COMPONENT_HAS_LIVED", "1", 1);
    return good.registerWith(accessor);
}

extern "C" __attribute__((visibility("default"))) void dalLCMterminate() {
    good.unregister();
}
