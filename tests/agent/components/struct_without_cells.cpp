// Has structs that consist of cells which are not there.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code == TevReturnOk) {
            **result = {DalMoTypeStruct, 5, nullptr};
        }
        return code;
    };
}
