// Prints on standard output in a read.
#include <cstdio>

#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        std::puts("read");
        return GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
    };
}
