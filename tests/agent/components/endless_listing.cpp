// Has a listing without an end. Says on standard output when it has begun.
#include <cstdio>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.newMoIterator = [](unsigned long, const char*, const char*, void**) {
        std::puts("listing");
        std::fflush(stdout);
        return TevReturnT{TevReturnOk};
    };
    component.objects.nextMo = [](void*, char** result) {
        static char key[] = "again";
        *result = key;
        return TevReturnT{TevReturnOk};
    };
}
