// Lacks a function in a table that it offers.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.nextMo = nullptr;
}
