// Forgets the type of its values.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code == TevReturnOk) {
            (*result)->type = 0;
        }
        return code;
    };
}
