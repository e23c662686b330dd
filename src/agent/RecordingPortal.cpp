#include "RecordingPortal.h"

#include <algorithm>

#include "TableCheck.h"

namespace TevAgent {

DalPortalAccessor* RecordingPortal::accessor() {
    return &PortalTable<RecordingPortal>::accessor;
}

void RecordingPortal::refuse(bool isRefusing) {
    const Tev::AnnotatedLock lock(mutex);
    isRefused = isRefusing;
}

std::vector<InterfaceId> RecordingPortal::asked() const {
    const Tev::AnnotatedLock lock(mutex);
    return wanted;
}

std::vector<DalMgmtSpiComponent_2*> RecordingPortal::registered() const {
    const Tev::AnnotatedLock lock(mutex);
    return components;
}

void RecordingPortal::clear() {
    for (DalMgmtSpiComponent_2* const table : registered()) {
        unregisterComponent(table);
    }
}

TevReturnT RecordingPortal::getInterface(const char* component, const char* interfaceName, const char* version,
                                         void** result) {
    if (component != nullptr && interfaceName != nullptr && version != nullptr) {
        const Tev::AnnotatedLock lock(mutex);
        const InterfaceId id(component, interfaceName, version);
        const auto isSame = [&id](const InterfaceId& other) { return other.text() == id.text(); };
        if (std::none_of(wanted.begin(), wanted.end(), isSame)) {
            wanted.push_back(id);
        }
        if (isRefused && result != nullptr) {
            *result = nullptr;
            return TevReturnNotFound;
        }
    }
    return portal.getInterface(component, interfaceName, version, result);
}

TevReturnT RecordingPortal::registerComponent(DalMgmtSpiComponent_2* table) {
    {
        const Tev::AnnotatedLock lock(mutex);
        components.push_back(table);
    }
    // A faulty table has items of its own that tell of it.
    return table == nullptr || TableCheck::faultOf(table).empty() ? portal.registerComponent(table) : TevReturnOk;
}

TevReturnT RecordingPortal::unregisterComponent(DalMgmtSpiComponent_2* table) {
    {
        const Tev::AnnotatedLock lock(mutex);
        components.erase(std::remove(components.begin(), components.end(), table), components.end());
    }
    return portal.unregisterComponent(table);
}

}  // namespace TevAgent
