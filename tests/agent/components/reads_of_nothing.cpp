// Has a value for no DN at all.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        return GoodComponent::getMoAttribute(txHandle, dn == nullptr ? GoodComponent::someDn : dn, attribute, result);
    };
}
