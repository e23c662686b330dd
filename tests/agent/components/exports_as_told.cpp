// Says on standard output how "export" is called, and ends it as the URI tells: with a message and success, with a
// message and a code, with a code alone, or with an exception.
#include <cstdio>
#include <string>

#include "DalMgmtSpiThreadContext.h"
#include "EntryPoints.h"

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
    if (uri == "sftp://throws/") {
        throw 42;
    }
    if (uri == "sftp://silent/") {
        return -13;
    }
    if (uri == "sftp://fails/") {
        post("SFTP error: nobody is there");
        return -1;
    }
    post("File transfer successful");
    *result = &nothing;
    return TevReturnOk;
}

void damage(GoodComponent& component) {
    component.objects.action = actAsTold;
}
