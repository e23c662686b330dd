// Gives values that reach for the terminal and are not UTF-8.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        static char text[] = "red\x1b[31m\nnext \xff";
        static DalMoAttributeValue value = {text};
        static DalMoAttributeValueContainer container = {DalMoTypeString, 1, &value};
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code == TevReturnOk) {
            *result = &container;
        }
        return code;
    };
}
