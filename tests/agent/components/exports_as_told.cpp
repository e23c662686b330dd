// Says on standard output how "export" is called, and ends it as the URI tells: with success, with or without a
// message; with a code, with or without one; with an exception; or finds the transaction invalid afterwards. Lists
// its instances whatever their class, and knows every instance that it is asked for.
#include <cstdio>
#include <string>

#include "DalMgmtSpiThreadContext.h"
#include "EntryPoints.h"

static bool isWanted = true;

static void post(const char* text) {
    GoodComponent::current
        ->find<DalMgmtSpiThreadContext_2>("DalMgmtSpiThreadContextService", "DalMgmtSpiThreadContext", "2")
        ->addMessage(1, text);
}

static TevReturnT actAsTold(unsigned long, const char* dn, const char* name, DalMoAttributeValueContainer** parameters,
                            DalMoAttributeValueContainer** result) {
    static DalMoAttributeValueContainer nothing = {DalMoTypeVoid, 0, nullptr};
    std::printf("%s %s", name, dn);
    for (; *parameters != nullptr; ++parameters) {
        std::printf(" (type %d, %u: %s)", (*parameters)->type, (*parameters)->nrOfValues,
                    (*parameters)->values->theString);
    }
    std::puts("");
    std::fflush(stdout);
    const std::string uri = (*(parameters - 2))->values->theString;
    if (uri == "sftp://throws/p") {
        throw 42;
    }
    isWanted = uri != "sftp://unwanted/p";
    if (uri == "sftp://silent/p") {
        return -13;
    }
    if (uri == "sftp://fails/p") {
        post("SFTP error: nobody is there");
        return -1;
    }
    if (uri != "sftp://quiet/p") {
        post("File transfer successful");
    }
    *result = &nothing;
    return TevReturnOk;
}

void damage(GoodComponent& component) {
    component.objects.action = actAsTold;
    component.objects.newMoIterator = [](unsigned long txHandle, const char*, const char*, void** iterator) {
        return GoodComponent::newMoIterator(txHandle, ",SysM=1", "Schema", iterator);
    };
    component.objects.getMoAttribute = [](unsigned long txHandle, const char*, const char* attribute,
                                          DalMoAttributeValueContainer** result) {
        return GoodComponent::getMoAttribute(txHandle, GoodComponent::someDn, attribute, result);
    };
    component.resource.validate = [](unsigned long, bool* result) {
        *result = isWanted;
        return TevReturnT{TevReturnOk};
    };
}
