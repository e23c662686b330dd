#ifndef TEV_AGENT_COMPONENT_H
#define TEV_AGENT_COMPONENT_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "DalMgmtSpiComponent.h"
#include "InterfaceId.h"

namespace TevAgent {

/// A registered component, behind the barrier. Its table was found well-formed and is borrowed.
class Component {
public:
    static constexpr std::chrono::seconds stopLimit{10};

    explicit Component(DalMgmtSpiComponent_2& componentTable);

    const std::string& name() const { return componentName; }
    DalMgmtSpiComponent_2& table() const { return descriptor; }

    /// The tables that the component offers, owned by the component.
    std::vector<DalMgmtSpiInterface_1*> offers() const;
    std::vector<InterfaceId> dependencies() const;

    /// Tells the component to start, to stop; what goes wrong is reported. Called one at a time. A component that does
    /// not return from `stop` within `limit`, if any, ends the program.
    TevReturnT start();
    TevReturnT stop(std::optional<std::chrono::seconds> limit);

private:
    DalMgmtSpiComponent_2& descriptor;
    const std::string componentName;
};

}  // namespace TevAgent

#endif
