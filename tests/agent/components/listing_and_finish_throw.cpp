// Throws an int in the middle of a listing, and another one when its transaction has ended.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = [](void*, char**) -> TevReturnT { throw 42; };
    component.resource.finish = [](unsigned long) -> TevReturnT { throw 43; };
}
