// Joins no transaction.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.resource.join = [](unsigned long) { return TevReturnT{-12}; };
}
