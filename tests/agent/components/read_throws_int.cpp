// Throws an int when the attribute "version" of the instance "one" is read.
#include <cstring>

#include "EntryPoints.h"

static TevReturnT (*goodRead)(unsigned long, const char*, const char*, DalMoAttributeValueContainer**);

void damage(GoodComponent& component) {
    goodRead = component.objects.getMoAttribute;
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* name,
                                          DalMoAttributeValueContainer** result) {
        if (std::strcmp(name, "version") == 0 && std::strstr(dn, "Schema=one") != nullptr) {
            throw 42;
        }
        return goodRead(txHandle, dn, name, result);
    };
}
