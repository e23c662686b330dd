// Has a listing without an end. Says on standard output when it has begun, and what it is told after that.
#include <cstdio>

#include "GoodComponent.h"

static GoodComponent good;

static TevReturnT say(const char* text) {
    std::puts(text);
    std::fflush(stdout);
    return TevReturnOk;
}

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    good.objects.newMoIterator = [](unsigned long, const char*, const char*, void**) { return say("listing"); };
    good.objects.nextMo = [](void*, char** result) {
        static char key[] = "again";
        *result = key;
        return TevReturnT{TevReturnOk};
    };
    good.resource.abort = [](unsigned long) { return say("abort"); };
    good.resource.finish = [](unsigned long) { return say("finish"); };
    good.component.stop = [](DalStateChangeReason) { return say("stop"); };
    return good.registerWith(accessor);
}

void dalLCMterminate() {
    say("terminate");
    good.unregister();
}
