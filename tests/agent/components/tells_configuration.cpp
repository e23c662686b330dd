// Says on standard output which configuration it is given and where it would look for it a second time.
#include <cstdio>
#include <cstdlib>

#include "GoodComponent.h"

static GoodComponent good;

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration) {
    const char* const folder = std::getenv("TEV_CONFIG_DIR");
    std::printf("configuration %s, folder %s\n", configuration == nullptr ? "none" : configuration,
                folder == nullptr ? "none" : folder);
    std::fflush(stdout);
    return good.registerWith(accessor);
}

void dalLCMterminate() {
    good.unregister();
}
