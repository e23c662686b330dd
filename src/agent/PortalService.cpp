#include "PortalService.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "Barrier.h"
#include "Diagnostics.h"
#include "Failure.h"
#include "StartOrder.h"
#include "TableCheck.h"

namespace TevAgent {

namespace {

bool isSame(const DalMgmtSpiInterface_1& left, const DalMgmtSpiInterface_1& right) {
    return std::strcmp(left.componentName, right.componentName) == 0 &&
           std::strcmp(left.interfaceName, right.interfaceName) == 0 &&
           std::strcmp(left.interfaceVersion, right.interfaceVersion) == 0;
}

}  // namespace

PortalService::PortalService() {
    offer(PortalTable<PortalService>::portal.base);
}

DalPortalAccessor* PortalService::accessor() {
    return &PortalTable<PortalService>::accessor;
}

void PortalService::offer(DalMgmtSpiInterface_1& table) {
    const Tev::AnnotatedLock lock(mutex);
    offers.push_back(&table);
}

DalMgmtSpiInterface_1* PortalService::find(const DalMgmtSpiInterface_1& wanted) const {
    const Tev::AnnotatedLock lock(mutex);
    for (DalMgmtSpiInterface_1* const table : offers) {
        if (isSame(*table, wanted)) {
            return table;
        }
    }
    for (const std::shared_ptr<Component>& component : components) {
        for (DalMgmtSpiInterface_1** entry = component->table().interfaceArray; *entry != nullptr; ++entry) {
            if (isSame(**entry, wanted)) {
                return *entry;
            }
        }
    }
    return nullptr;
}

TevReturnT PortalService::getInterface(const char* component, const char* interfaceName, const char* version,
                                       void** result) {
    if (result == nullptr) {
        return TevReturnInvalidArgument;
    }
    *result = nullptr;
    if (component == nullptr || interfaceName == nullptr || version == nullptr) {
        return TevReturnInvalidArgument;
    }
    *result = find({component, interfaceName, version});
    return *result == nullptr ? TevReturnNotFound : TevReturnOk;
}

TevReturnT PortalService::registerComponent(DalMgmtSpiComponent_2* table) {
    const std::string fault = TableCheck::faultOf(table);
    if (!fault.empty()) {
        Diagnostics::say(fault);
        return TevReturnInvalidArgument;
    }
    const auto component = std::make_shared<Component>(*table);
    const Tev::AnnotatedLock lock(mutex);
    for (const std::shared_ptr<Component>& other : components) {
        if (other->name() == component->name()) {
            Diagnostics::say("component " + component->name() + " is registered already");
            return TevReturnFailure;
        }
    }
    components.push_back(component);
    return TevReturnOk;
}

TevReturnT PortalService::unregisterComponent(DalMgmtSpiComponent_2* table) {
    if (table == nullptr) {
        return TevReturnInvalidArgument;
    }
    const auto isIt = [table](const std::shared_ptr<Component>& component) { return &component->table() == table; };
    const Tev::AnnotatedLock lock(mutex);
    // Its table is gone from now on, so it cannot be told to stop any more.
    toldToStart.erase(std::remove_if(toldToStart.begin(), toldToStart.end(), isIt), toldToStart.end());
    const auto found = std::find_if(components.begin(), components.end(), isIt);
    if (found == components.end()) {
        return TevReturnNotFound;
    }
    components.erase(found);
    return TevReturnOk;
}

std::vector<std::shared_ptr<Component>> PortalService::registered() const {
    const Tev::AnnotatedLock lock(mutex);
    return components;
}

std::vector<std::shared_ptr<Component>> PortalService::startOrder() const {
    return StartOrder::of(offeredByAgent(), registered());
}

void PortalService::start() {
    for (const std::shared_ptr<Component>& component : startOrder()) {
        {
            const Tev::AnnotatedLock lock(mutex);
            toldToStart.push_back(component);
        }
        Diagnostics::Capture capture;
        if (component->start() != TevReturnOk) {
            throw Failure(ExitStatus::NotStarted, capture.takeOr("component " + component->name() + " did not start"));
        }
    }
}

TevReturnT PortalService::stop(std::optional<std::chrono::seconds> limit) {
    TevReturnT result = TevReturnOk;
    while (const std::shared_ptr<Component> component = takeLastStarted()) {
        const TevReturnT code = component->stop(limit);
        result = result == TevReturnOk ? code : result;
    }
    return result;
}

std::shared_ptr<Component> PortalService::takeLastStarted() {
    const Tev::AnnotatedLock lock(mutex);
    if (toldToStart.empty()) {
        return nullptr;
    }
    std::shared_ptr<Component> component = std::move(toldToStart.back());
    toldToStart.pop_back();
    return component;
}

std::vector<InterfaceId> PortalService::offeredByAgent() const {
    const Tev::AnnotatedLock lock(mutex);
    std::vector<InterfaceId> ids;
    for (const DalMgmtSpiInterface_1* table : offers) {
        ids.emplace_back(*table);
    }
    return ids;
}

}  // namespace TevAgent
