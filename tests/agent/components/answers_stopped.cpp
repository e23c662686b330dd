// Reads on when it is stopped.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code == TevReturnNotStarted) {
            *result = GoodComponent::current->valueFor(txHandle);
        }
        return code == TevReturnNotStarted ? TevReturnT{TevReturnOk} : code;
    };
}
