// Deletes what is not there.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.deleteMo = [](unsigned long, const char*) { return TevReturnT{TevReturnOk}; };
}
