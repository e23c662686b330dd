// Has a second component, which takes part in transactions and has no managed objects.
#include "../GoodComponent.h"

namespace {

DalPortal_3* portal = nullptr;
std::atomic<bool> isStarted{false};
TevReturnT joinToo(unsigned long txHandle);

TevReturnT succeed(unsigned long) {
    return TevReturnOk;
}

TevReturnT validate(unsigned long, bool* result) {
    *result = true;
    return TevReturnOk;
}

DalOamSpiTransactionalResource_2 resource = {
    {"Companion", "DalOamSpiTransactionalResource", "2"}, joinToo, succeed, succeed, succeed, succeed, validate};
DalMgmtSpiInterface_1 portalInterface = {"DalPortalService", "DalPortal", "3"};
DalMgmtSpiInterface_1* offers[] = {&resource.base, nullptr};
DalMgmtSpiInterface_1* dependencies[] = {&portalInterface, nullptr};
DalMgmtSpiInterface_1* extras[] = {nullptr};
DalMgmtSpiComponent_2 companion = {{"Companion", "DalMgmtSpiComponent", "2"},
                                   offers,
                                   dependencies,
                                   [](DalStateChangeReason) {
                                       isStarted = true;
                                       return TevReturnT{TevReturnOk};
                                   },
                                   [](DalStateChangeReason) {
                                       isStarted = false;
                                       return TevReturnT{TevReturnOk};
                                   },
                                   extras,
                                   false};

TevReturnT joinToo(unsigned long txHandle) {
    void* service = nullptr;
    portal->getInterface("DalOamSpiTransactionService", "DalOamSpiTransaction", "2", &service);
    return isStarted ? static_cast<DalOamSpiTransaction_2*>(service)->registerParticipant(txHandle, &resource)
                     : TevReturnNotStarted;
}

GoodComponent good;

}  // namespace

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char*) {
    portal = static_cast<DalPortal_3*>(accessor->getPortal("3"));
    if (portal == nullptr) {
        return TevReturnFailure;
    }
    portal->registerComponent(&companion);
    return good.registerWith(accessor);
}

void dalLCMterminate() {
    good.unregister();
    portal->unregisterComponent(&companion);
}
