// Has a class whose instances stand at the root, and which no route leads to.
#define COMPONENT_NAME "RootService"
#include "../EntryPoints.h"

/// The DN that the good component knows the instance by; one that it does not know for any other DN.
static std::string insideDn(const std::string& dn) {
    return dn.compare(0, 5, "Root=") == 0 && dn.find(',') == std::string::npos
               ? "ManagedElement=1,SysM=1,Schema=" + dn.substr(5)
               : "Unknown=1";
}

void damage(GoodComponent& component) {
    component.objects.newMoIterator = [](unsigned long txHandle, const char* parent, const char* className,
                                         void** iterator) {
        if (parent == nullptr || className == nullptr) {
            return TevReturnT{TevReturnInvalidArgument};
        }
        const bool isOwn = *parent == '\0' && std::strcmp(className, "Root") == 0;
        return GoodComponent::newMoIterator(txHandle, isOwn ? "ManagedElement=1,SysM=1" : parent,
                                            isOwn ? "Schema" : "Unknown", iterator);
    };
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        return GoodComponent::getMoAttribute(txHandle, dn == nullptr ? nullptr : insideDn(dn).c_str(), attribute,
                                             result);
    };
}
