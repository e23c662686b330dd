#ifndef TEV_AGENT_ROUTE_H
#define TEV_AGENT_ROUTE_H

#include <string>
#include <vector>

namespace TevAgent {

/// Which component the instances of a class belong to.
struct Route {
    std::string className;
    std::vector<std::string> parent;  ///< the classes above it from the root on; empty for a class at the root
    std::string component;            ///< component name
};

}  // namespace TevAgent

#endif
