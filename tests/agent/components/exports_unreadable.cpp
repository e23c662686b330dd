// Lists its instance "one" twice, as a model with two versions; which one counts cannot be read. It can be exported.
#include <cstring>

#include "EntryPoints.h"

static decltype(DalOamSpiManagedObject_1::getMoAttribute) readGood;

void damage(GoodComponent& component) {
    readGood = component.objects.getMoAttribute;
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        return std::strcmp(attribute, "version") == 0 ? GoodComponent::refused
                                                      : readGood(txHandle, dn, attribute, result);
    };
    component.objects.nextMo = [](void*, char** result) {
        static char one[] = "one";
        static int given = 0;
        // Every listing gives both.
        *result = ++given % 3 == 0 ? nullptr : one;
        return TevReturnT{TevReturnOk};
    };
    component.objects.action = [](unsigned long, const char*, const char*, DalMoAttributeValueContainer**,
                                  DalMoAttributeValueContainer** result) {
        static DalMoAttributeValueContainer nothing = {DalMoTypeVoid, 0, nullptr};
        *result = &nothing;
        return TevReturnT{TevReturnOk};
    };
}
