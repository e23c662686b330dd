// Has references that are no DNs.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code == TevReturnOk) {
            (*result)->type = DalMoTypeReference;
        }
        return code;
    };
}
