// Has a value for every attribute that is asked for.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        return GoodComponent::getMoAttribute(txHandle, dn, attribute == nullptr ? nullptr : "version", result);
    };
}
