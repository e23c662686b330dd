#ifndef TEV_PORTAL_H
#define TEV_PORTAL_H

#include "DalMgmtSpiInterface.h"
#include "DalPortal.h"
#include "TevCommonApi.h"
#include "TevReturnT.h"

/// The common library's own way to the framework's portal.
namespace Tev::Portal {

/// The portal's descriptor: "DalPortalService", "DalPortal", "3". Constant-initialised, so it may be read while other
/// libraries are being loaded.
extern TEV_COMMON_API DalMgmtSpiInterface_1 COMP_ID;

/// Tells the common library where the portal is. The host calls it before it loads a component, and keeps `accessor`
/// valid until it has unloaded the last; null takes it back. Thread-safe.
TEV_COMMON_API void setAccessor(DalPortalAccessor* accessor);

/// Looks an interface up, as `DalPortal_3::getInterface` does. Returns -1 and sets `*result` to null when no accessor
/// is set or it gives no portal of version "3". Thread-safe.
TEV_COMMON_API TevReturnT getInterface(const char* componentName, const char* interfaceName, const char* version,
                                       void** result);

}  // namespace Tev::Portal

#endif
