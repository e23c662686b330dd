// Has a value for an instance that it does not list.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const bool isHidden = dn != nullptr && std::strstr(dn, "Schema=tev-check") != nullptr;
        return GoodComponent::getMoAttribute(txHandle, isHidden ? GoodComponent::someDn : dn, attribute, result);
    };
}
