// Leaves a message for the operator in every read of a schemaId.
#include <cstring>

#include "DalMgmtSpiThreadContext.h"
#include "EntryPoints.h"

static TevReturnT (*goodRead)(unsigned long, const char*, const char*, DalMoAttributeValueContainer**);

void damage(GoodComponent& component) {
    goodRead = component.objects.getMoAttribute;
    component.objects.getMoAttribute = [](unsigned long txHandle, const char* dn, const char* name,
                                          DalMoAttributeValueContainer** result) {
        if (std::strcmp(name, "schemaId") == 0) {
            GoodComponent::current
                ->find<DalMgmtSpiThreadContext_2>("DalMgmtSpiThreadContextService", "DalMgmtSpiThreadContext", "2")
                ->addMessage(1, "mind the gap");
        }
        return goodRead(txHandle, dn, name, result);
    };
}
