// Gives every value in the same place.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        // In each thread, so that it is no matter of threads.
        thread_local char text[8];
        const TevReturnT code = GoodComponent::getMoAttribute(txHandle, dn, attribute, result);
        if (code == TevReturnOk) {
            text[0] = attribute[std::strlen(attribute) - 1];
            (*result)->values->theString = text;
        }
        return code;
    };
}
