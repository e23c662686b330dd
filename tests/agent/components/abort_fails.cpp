// Does not abort.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.abort = [](unsigned long) { return TevReturnT{-5}; };
}
