// Takes a key for its own when it only begins like one.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const bool isPrefix = dn != nullptr && std::strlen(dn) > 3 && std::strcmp(dn + std::strlen(dn) - 3, "=on") == 0;
        return GoodComponent::getMoAttribute(txHandle, isPrefix ? GoodComponent::someDn : dn, attribute, result);
    };
}
