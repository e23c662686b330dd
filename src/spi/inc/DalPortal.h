#ifndef DAL_PORTAL_H
#define DAL_PORTAL_H

#include "DalMgmtSpiComponent.h"
#include "DalMgmtSpiInterface.h"
#include "TevReturnT.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The way from a loaded library to the framework's portal. The host owns it; it outlives every loaded component.
typedef struct DalPortalAccessor {
    /// Returns the portal's table for `version` ("3" gives a `DalPortal_3`), owned by the host, or null when there is
    /// no portal of that version.
    /// [any-thread]
    void* (*getPortal)(const char* version);
} DalPortalAccessor;

/// The meeting place of components and framework services: interface "DalPortal", version "3".
typedef struct DalPortal_3 {
    DalMgmtSpiInterface_1 base;

    /// Looks an interface up by exact component name, interface name and version. On success returns 0 and sets
    /// `*result` to the interface's table, owned by whoever offers it. Otherwise sets `*result` to null and returns
    /// -2 when nobody offers it, or another code.
    /// [any-thread]
    TevReturnT (*getInterface)(const char* componentName, const char* interfaceName, const char* version,
                               void** result);

    /// Not for components.
    void (*reserved)(void);

    /// Makes a component known. The portal borrows `component` until `unregisterComponent` has returned.
    /// [lifecycle]
    TevReturnT (*registerComponent)(DalMgmtSpiComponent_2* component);

    /// Forgets a component. Returns 0, or -2 when it was not registered.
    /// [lifecycle]
    TevReturnT (*unregisterComponent)(DalMgmtSpiComponent_2* component);
} DalPortal_3;

/// Marks what the library of a component exports, also where it is built with hidden visibility.
#define DAL_ENTRY_POINT __attribute__((visibility("default")))

// The two entry points, which the library of a component defines and the host looks up by name once it has loaded it.
// An exception may leave them, as it may leave every entry of a component's tables: the host takes it as a failure.

/// Registers the component with the portal that `accessor` gives. `configuration` is a path, borrowed until the call
/// returns, or null for none. Returns 0; any other code is why it cannot be used, and no `dalLCMterminate` follows.
/// [lifecycle]
DAL_ENTRY_POINT TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration);

/// Takes the component off the portal, after the last `stop`. The library may be unloaded when it has returned.
/// [lifecycle]
DAL_ENTRY_POINT void dalLCMterminate(void);

#ifdef __cplusplus
}
#endif

#endif
