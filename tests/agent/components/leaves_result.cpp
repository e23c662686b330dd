// Gives a value together with the code that there is none.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code == TevReturnNotFound && !GoodComponent::hasAttribute(attribute)) {
            *result = GoodComponent::current->valueFor(txHandle);
        }
        return code;
    };
}
