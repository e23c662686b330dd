// Carries out every action.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.action = [](unsigned long, const char*, const char*, DalMoAttributeValueContainer**,
                                  DalMoAttributeValueContainer** result) {
        static DalMoAttributeValueContainer nothing = {DalMoTypeVoid, 0, nullptr};
        *result = &nothing;
        return TevReturnT{TevReturnOk};
    };
}
