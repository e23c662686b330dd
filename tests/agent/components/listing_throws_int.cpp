// Throws an int in the middle of a listing.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = [](void*, char**) -> TevReturnT { throw 42; };
}
