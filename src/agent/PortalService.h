#ifndef TEV_AGENT_PORTAL_SERVICE_H
#define TEV_AGENT_PORTAL_SERVICE_H

#include <chrono>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "AnnotatedMutex.h"
#include "Component.h"
#include "DalPortal.h"
#include "InterfaceId.h"
#include "OnlyOne.h"

namespace TevAgent {

/// The table of a portal, and what gives components that table: for its version "3", null for all else.
template <class Portal>
struct PortalTable {
    static void* getPortal(const char* version) {
        return version != nullptr && std::strcmp(version, portal.base.interfaceVersion) == 0 ? &portal : nullptr;
    }

    static void reserved() {}

    inline static DalPortal_3 portal = {{Portal::componentName, "DalPortal", "3"},
                                        Portal::template TableEntry<&Portal::getInterface>::call,
                                        reserved,
                                        Portal::template TableEntry<&Portal::registerComponent>::call,
                                        Portal::template TableEntry<&Portal::unregisterComponent>::call};
    inline static DalPortalAccessor accessor = {getPortal};
};

/// The meeting place of components and the agent's services: what is offered, who is registered, who was told to start.
///
/// Tables are borrowed: those offered by the agent for as long as the portal lives, those of a component until it
/// unregisters. Looking up and registering are safe from any thread; the rest is called by one thread at a time.
class PortalService : public OnlyOne<PortalService> {
public:
    static constexpr const char* componentName = "DalPortalService";

    PortalService();

    /// What components are given: the portal for version "3", null for all else.
    static DalPortalAccessor* accessor();

    /// Offers one of the agent's own tables.
    void offer(DalMgmtSpiInterface_1& table);

    /// The table that is offered under exactly these names and this version, which are all there; or null.
    DalMgmtSpiInterface_1* find(const DalMgmtSpiInterface_1& wanted) const;

    /// As the portal's table gives it: 0, -2 (nothing of exactly that version) or -8 (a null argument).
    TevReturnT getInterface(const char* component, const char* interfaceName, const char* version, void** result);

    /// Returns 0; -8 when the table is faulty, -1 when there is such a component already. Says why.
    TevReturnT registerComponent(DalMgmtSpiComponent_2* table);

    /// Returns 0, -2 when the component is not registered, -8 for null.
    TevReturnT unregisterComponent(DalMgmtSpiComponent_2* table);

    /// The registered components, in the order of their registration.
    std::vector<std::shared_ptr<Component>> registered() const;

    /// What is registered, in the order of dependencies. Throws `Failure` (not started) when they cannot be met.
    std::vector<std::shared_ptr<Component>> startOrder() const;

    /// Starts what is registered, in the order of dependencies. Throws `Failure` (not started) at the first component
    /// that does not start, or when the dependencies cannot be met; what was told to start then waits for `stop`.
    void start();

    /// Stops, in reverse order, every component that was told to start, also one whose start failed. Returns 0 or the
    /// first code of one that did not stop; says which. Each may take `limit`, as `Component` has it.
    TevReturnT stop(std::optional<std::chrono::seconds> limit = Component::stopLimit);

private:
    friend PortalTable<PortalService>;

    std::vector<InterfaceId> offeredByAgent() const;

    /// The component that was told to start last, which is to be told to stop now; null when there is none.
    std::shared_ptr<Component> takeLastStarted();

    mutable Tev::AnnotatedMutex mutex;
    std::vector<DalMgmtSpiInterface_1*> offers TEV_GUARDED_BY(mutex);
    std::vector<std::shared_ptr<Component>> components TEV_GUARDED_BY(mutex);
    std::vector<std::shared_ptr<Component>> toldToStart TEV_GUARDED_BY(mutex);
};

}  // namespace TevAgent

#endif
