// Throws where it refuses an action.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.action = [](unsigned long, const char*, const char*, DalMoAttributeValueContainer**,
                                  DalMoAttributeValueContainer**) -> TevReturnT { throw 42; };
}
