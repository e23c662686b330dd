// Calls exit in the middle of a listing.
#include <cstdlib>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = [](void*, char**) -> TevReturnT { std::exit(0); };
}
