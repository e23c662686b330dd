// Can be initialized only once in the life of its process, however often it is loaded.
#include <cstdlib>

#include "GoodComponent.h"

static GoodComponent good;
static bool isFirst = false;

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    if (!isFirst && std::getenv("COMPONENT_HAS_LIVED") != nullptr) {
        return -17;
    }
    isFirst = true;
    setenv("COMPONENT_HAS_LIVED", "1", 1);
    return good.registerWith(accessor);
}

void dalLCMterminate() {
    good.unregister();
}
