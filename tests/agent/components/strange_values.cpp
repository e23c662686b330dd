// Gives values that reach for the terminal and are not UTF-8.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long, const char*, const char*,
                                          DalMoAttributeValueContainer** result) {
        static char text[] = "red\x1b[31m\nnext \xff";
        static DalMoAttributeValue value = {text};
        static DalMoAttributeValueContainer container = {DalMoTypeString, 1, &value};
        *result = &container;
        return TevReturnT{TevReturnOk};
    };
}
