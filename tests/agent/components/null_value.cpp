// Reads with success, but gives no container.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long, const char*, const char*, DalMoAttributeValueContainer**) {
        return TevReturnT{TevReturnOk};
    };
}
