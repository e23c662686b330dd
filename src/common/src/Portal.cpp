#include "Portal.h"

#include <atomic>

namespace Tev::Portal {

namespace {

constexpr DalMgmtSpiInterface_1 portalId{"DalPortalService", "DalPortal", "3"};

std::atomic<DalPortalAccessor*> currentAccessor{nullptr};

}  // namespace

DalMgmtSpiInterface_1 COMP_ID = portalId;

void setAccessor(DalPortalAccessor* accessor) {
    currentAccessor.store(accessor, std::memory_order_release);
}

TevReturnT getInterface(const char* componentName, const char* interfaceName, const char* version, void** result) {
    *result = nullptr;
    DalPortalAccessor* const accessor = currentAccessor.load(std::memory_order_acquire);
    if (accessor == nullptr) {
        return TevReturnFailure;
    }
    auto* const portal = static_cast<DalPortal_3*>(accessor->getPortal(COMP_ID.interfaceVersion));
    if (portal == nullptr) {
        return TevReturnFailure;
    }
    return portal->getInterface(componentName, interfaceName, version, result);
}

}  // namespace Tev::Portal
