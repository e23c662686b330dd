// Does not return from the read of an attribute, and says on standard output that it has begun.
#include <unistd.h>

#include <cstdio>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long, const char*, const char*,
                                          DalMoAttributeValueContainer**) -> TevReturnT {
        std::puts("reading");
        std::fflush(stdout);
        for (;;) {
            pause();
        }
    };
}
