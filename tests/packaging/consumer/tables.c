// A component in C, which knows nothing but the framework's tables.
#include <DalMgmtSpiComponent.h>
#include <DalMgmtSpiInterface.h>
#include <DalMgmtSpiThreadContext.h>
#include <DalOamSpiManagedObject.h>
#include <DalOamSpiModelRepository.h>
#include <DalOamSpiModelRepositoryExtension.h>
#include <DalOamSpiTransaction.h>
#include <DalOamSpiTransactionalResource.h>
#include <DalPortal.h>
#include <TevReturnT.h>
#include <stdio.h>

static DalMgmtSpiInterface_1* none[1];

static TevReturnT start(DalStateChangeReason reason) {
    (void)reason;
    fputs("C greets, too\n", stderr);
    return TevReturnOk;
}

static TevReturnT stop(DalStateChangeReason reason) {
    (void)reason;
    return TevReturnOk;
}

static DalMgmtSpiComponent_2 component = {{"Tables", "DalMgmtSpiComponent", "2"}, none, none, start, stop, none, false};
static DalPortal_3* portal;

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration) {
    (void)configuration;
    portal = accessor->getPortal("3");
    return portal->registerComponent(&component);
}

void dalLCMterminate(void) {
    portal->unregisterComponent(&component);
}
