// Calls exit while an attribute of its second instance is read.
#include <cstdlib>
#include <cstring>

#include "EntryPoints.h"

static const GoodComponent untouched;

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        if (std::strstr(dn, "Schema=two") != nullptr) {
            std::exit(0);
        }
        return untouched.objects.getMoAttribute(txHandle, dn, attribute, result);
    };
}
