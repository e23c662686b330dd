#ifndef TEV_AGENT_START_ORDER_H
#define TEV_AGENT_START_ORDER_H

#include <memory>
#include <vector>

#include "Component.h"
#include "InterfaceId.h"

namespace TevAgent {

/// Resolves the dependencies of components.
///
/// A dependency is met by the same component and interface name in that version or a higher one, offered by the agent
/// or by a component that starts earlier. The portal's is always met.
class StartOrder {
public:
    using Components = std::vector<std::shared_ptr<Component>>;

    /// `components` in an order in which each starts after those that it depends on, otherwise in the order given.
    /// Throws `Failure` (not started) that names the dependency that nobody offers, or the components that depend on
    /// each other in a circle.
    static Components of(const std::vector<InterfaceId>& offeredByAgent, const Components& components);
};

}  // namespace TevAgent

#endif
