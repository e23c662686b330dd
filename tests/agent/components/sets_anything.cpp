// Takes every value that is set.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.setMoAttribute = [](unsigned long, const char*, const char*, DalMoAttributeValueContainer*) {
        return TevReturnT{TevReturnOk};
    };
}
