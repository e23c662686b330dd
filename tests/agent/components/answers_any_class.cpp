// Has a value for objects of other classes.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const bool isOther = dn != nullptr && std::strstr(dn, ",Schema=") == nullptr;
        return GoodComponent::getMoAttribute(txHandle, isOther ? GoodComponent::someDn : dn, attribute, result);
    };
}
