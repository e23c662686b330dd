// Comes down over a read without an attribute.
#include <cstdlib>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        if (attribute == nullptr) {
            std::abort();
        }
        return GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
    };
}
