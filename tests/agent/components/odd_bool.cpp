// Has truth values that are neither true nor false.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code == TevReturnOk) {
            (*result)->type = DalMoTypeBool;
            (*result)->values[0].theUint8 = 0xFE;
        }
        return code;
    };
}
