#ifndef TEV_AGENT_INTERFACE_ID_H
#define TEV_AGENT_INTERFACE_ID_H

#include <string>

#include "DalMgmtSpiInterface.h"

namespace TevAgent {

/// The texts of an interface descriptor, copied: a value that outlives the library that the descriptor stands in.
struct InterfaceId {
    InterfaceId(std::string componentName, std::string interfaceName, std::string interfaceVersion);

    /// Copies a descriptor whose texts are all there.
    explicit InterfaceId(const DalMgmtSpiInterface_1& descriptor);

    /// For messages: "DalPortalService/DalPortal version 3".
    std::string text() const;

    /// Whether this interface is what `wanted` asks for: the same names, and that version or a higher one. Versions
    /// are decimal numbers of any length; a text that is none is met only by itself.
    bool meets(const InterfaceId& wanted) const;

    std::string component;
    std::string name;
    std::string version;
};

}  // namespace TevAgent

#endif
