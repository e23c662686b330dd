// Is content to hand a value out to nobody.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        return result == nullptr ? TevReturnT{TevReturnOk}
                                 : GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
    };
}
