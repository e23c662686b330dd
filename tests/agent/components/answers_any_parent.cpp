// Looks at the last step of a DN only.
#include "EntryPoints.h"

void damage(GoodComponent& component) {
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        const char* const last = dn == nullptr ? nullptr : std::strstr(dn, ",Schema=");
        const std::string whole = last == nullptr ? "" : std::string("ManagedElement=1,SysM=1") + last;
        return GoodComponent::getMoAttribute(txHandle, last == nullptr ? dn : whole.c_str(), attribute, result);
    };
}
