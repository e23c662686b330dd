#ifndef TEV_AGENT_RECORDING_PORTAL_H
#define TEV_AGENT_RECORDING_PORTAL_H

#include <vector>

#include "AnnotatedMutex.h"
#include "DalPortal.h"
#include "InterfaceId.h"
#include "OnlyOne.h"
#include "PortalService.h"

namespace TevAgent {

/// Stands between components and the portal of a check, and keeps what they ask of it. Thread-safe.
class RecordingPortal : public OnlyOne<RecordingPortal> {
public:
    static constexpr const char* componentName = PortalService::componentName;

    /// The portal behind it outlives this object.
    explicit RecordingPortal(PortalService& portalService) : portal(portalService) {}

    /// What components are given: the portal for version "3", null for all else.
    static DalPortalAccessor* accessor();

    /// Whether it finds no interface from now on.
    void refuse(bool isRefusing);

    /// Which interfaces were asked for, each once, in order.
    std::vector<InterfaceId> asked() const;

    /// Which tables are registered, in order, as they came: faulty ones, which the portal behind does not get to know,
    /// and null included.
    std::vector<DalMgmtSpiComponent_2*> registered() const;

    /// Forgets what is registered, as the portal behind does: the tables are gone.
    void clear();

private:
    friend PortalTable<RecordingPortal>;

    TevReturnT getInterface(const char* component, const char* interfaceName, const char* version, void** result);
    TevReturnT registerComponent(DalMgmtSpiComponent_2* table);
    TevReturnT unregisterComponent(DalMgmtSpiComponent_2* table);

    PortalService& portal;
    mutable Tev::AnnotatedMutex mutex;
    bool isRefused TEV_GUARDED_BY(mutex) = false;
    std::vector<InterfaceId> wanted TEV_GUARDED_BY(mutex);
    std::vector<DalMgmtSpiComponent_2*> components TEV_GUARDED_BY(mutex);
};

}  // namespace TevAgent

#endif
