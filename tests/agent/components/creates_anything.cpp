// Creates instances of any class.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.createMo = [](unsigned long, const char*, const char*, const char*,
                                    DalMoAttributeValueContainer*) { return TevReturnT{TevReturnOk}; };
}
