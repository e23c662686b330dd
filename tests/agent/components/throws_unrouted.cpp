// Throws, but nobody knows its class.
#define COMPONENT_NAME "Unrouted"
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.newMoIterator = [](unsigned long, const char*, const char*, void**) -> TevReturnT { throw 1; };
}
