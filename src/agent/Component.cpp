#include "Component.h"

#include "Barrier.h"
#include "Watchdog.h"

namespace TevAgent {

Component::Component(DalMgmtSpiComponent_2& componentTable)
    : descriptor(componentTable), componentName(componentTable.base.componentName) {}

std::vector<DalMgmtSpiInterface_1*> Component::offers() const {
    std::vector<DalMgmtSpiInterface_1*> tables;
    for (DalMgmtSpiInterface_1** entry = descriptor.interfaceArray; *entry != nullptr; ++entry) {
        tables.push_back(*entry);
    }
    return tables;
}

std::vector<InterfaceId> Component::dependencies() const {
    std::vector<InterfaceId> wanted;
    for (DalMgmtSpiInterface_1** entry = descriptor.dependencyArray; *entry != nullptr; ++entry) {
        wanted.emplace_back(**entry);
    }
    return wanted;
}

TevReturnT Component::start() {
    return Barrier::demand(componentName, "start",
                           [this] { return descriptor.start(DalStateChangeReasonUnspecified); });
}

TevReturnT Component::stop(std::optional<std::chrono::seconds> limit) {
    std::optional<Watchdog> watchdog;
    if (limit) {
        watchdog.emplace(*limit, "component " + componentName + " did not return from stop within " +
                                     std::to_string(limit->count()) + " seconds");
    }
    return Barrier::demand(componentName, "stop", [this] { return descriptor.stop(DalStateChangeReasonUnspecified); });
}

}  // namespace TevAgent
