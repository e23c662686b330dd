#ifndef TEV_DAL_COMPONENT_H
#define TEV_DAL_COMPONENT_H

#include <cstring>
#include <vector>

#include "DalMgmtSpiComponent.h"
#include "DalMgmtSpiInterface.h"
#include "DalPortal.h"
#include "Portal.h"
#include "TevReturnT.h"

namespace Tev {

/// The framework side of a component: its descriptor, the lists of what it offers and needs, and its registration.
///
/// `T` derives from `DalComponent<T>`, hands its component name to the constructor, appends to `interfaces` and
/// `dependencies` in its own constructor, and has these members:
///
///     TevReturnT initialize(const char* configuration);   // once registered; the configuration may be null
///     TevReturnT start(DalStateChangeReason);
///     TevReturnT stop(DalStateChangeReason);
///     void terminate();                                   // before it is unregistered
///
/// The framework calls `registerComponent`, `unregisterComponent`, `start` and `stop` one at a time.
template <class T>
class DalComponent {
public:
    /// The component's one object, made on first use and destroyed when the library is unloaded. Thread-safe.
    static T& instance() {
        static T object;
        return object;
    }

    DalComponent(const DalComponent&) = delete;
    DalComponent& operator=(const DalComponent&) = delete;

    /// What `dalLCMinit` does: registers the component with the portal that `accessor` (borrowed for good) gives, then
    /// initializes it. Returns -1 without a portal of version "3", the portal's code when it refuses the component,
    /// otherwise what `initialize` returns.
    TevReturnT registerComponent(DalPortalAccessor* accessor, const char* configuration) {
        portalAccessor = accessor;
        portal = static_cast<DalPortal_3*>(accessor->getPortal("3"));
        portalV1 = accessor->getPortal("1");
        if (portal == nullptr) {
            return TevReturnFailure;
        }
        component.interfaceArray = terminatedCopy(interfaces, interfaceArray);
        component.dependencyArray = terminatedCopy(dependencies, dependencyArray);
        component.extraArray = terminatedCopy(extraInterfaces, extraArray);
        const TevReturnT result = portal->registerComponent(&component);
        return result != TevReturnOk ? result : self().initialize(configuration);
    }

    /// What `dalLCMterminate` does: terminates the component and takes it off the portal.
    void unregisterComponent() {
        self().terminate();
        if (portal != nullptr) {
            portal->unregisterComponent(&component);
            portal = nullptr;
        }
    }

protected:
    using InterfaceList = std::vector<DalMgmtSpiInterface_1*>;

    /// `componentName` must outlive the component. Every component but the portal itself depends on the portal first.
    explicit DalComponent(const char* componentName) {
        component.base = {componentName, "DalMgmtSpiComponent", "2"};
        component.start = [](DalStateChangeReason reason) { return instance().start(reason); };
        component.stop = [](DalStateChangeReason reason) { return instance().stop(reason); };
        if (std::strcmp(componentName, Portal::COMP_ID.componentName) != 0) {
            dependencies.push_back(&Portal::COMP_ID);
        }
    }

    ~DalComponent() = default;

    DalPortalAccessor* portalAccessor = nullptr;
    DalPortal_3* portal = nullptr;  ///< null before `registerComponent` and after `unregisterComponent`
    void* portalV1 = nullptr;       ///< kept for components that need it
    DalMgmtSpiComponent_2 component{};
    InterfaceList interfaces;       ///< offered
    InterfaceList interfaceArray;   ///< `interfaces` and a null, as the framework sees them
    InterfaceList dependencies;     ///< required
    InterfaceList dependencyArray;  ///< `dependencies` and a null
    InterfaceList extraInterfaces;
    InterfaceList extraArray;  ///< `extraInterfaces` and a null

private:
    T& self() { return static_cast<T&>(*this); }

    static DalMgmtSpiInterface_1** terminatedCopy(const InterfaceList& list, InterfaceList& copy) {
        copy = list;
        copy.push_back(nullptr);
        return copy.data();
    }
};

}  // namespace Tev

#endif
