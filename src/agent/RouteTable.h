#ifndef TEV_AGENT_ROUTE_TABLE_H
#define TEV_AGENT_ROUTE_TABLE_H

#include <string_view>
#include <vector>

#include "Route.h"

namespace TevAgent {

/// Which classes belong to components. Immutable, so several threads may use one object.
///
/// A class goes by its name; where several routes have it, by the classes above it, and by the first route when none
/// of them has those.
class RouteTable {
public:
    /// Throws `Failure` (not started) when two routes of a class under the same parents name different components.
    explicit RouteTable(std::vector<Route> routeList);

    /// The route of the class of the first routed RDN of `dn`, or null.
    const Route* ofDn(std::string_view dn) const;

    /// The route of a class whose instances stand directly under `parentDn`, or null.
    const Route* ofClass(std::string_view parentDn, std::string_view className) const;

private:
    /// The route of that class for which `isExact`, else the first of that class, or null.
    template <class IsExact>
    const Route* find(std::string_view className, const IsExact& isExact) const;

    const std::vector<Route> routes;
};

}  // namespace TevAgent

#endif
