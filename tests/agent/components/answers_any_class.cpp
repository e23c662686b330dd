// Has a value for objects of other classes.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const bool isOther = dn != nullptr && !GoodComponent::isSchemaDn(dn);
        return GoodComponent::getMoAttribute(txHandle, isOther ? ",Schema=one" : dn, attribute, result);
    };
}
