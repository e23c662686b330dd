// Refuses an unknown attribute with a code that is not the one for it.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        const bool isUnknown = attribute != nullptr && !GoodComponent::hasAttribute(attribute);
        return code == TevReturnNotFound && isUnknown ? TevReturnT{-99} : code;
    };
}
