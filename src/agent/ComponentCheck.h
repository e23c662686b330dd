#ifndef TEV_AGENT_COMPONENT_CHECK_H
#define TEV_AGENT_COMPONENT_CHECK_H

#include <functional>
#include <string>
#include <vector>

#include "Agent.h"
#include "CheckResult.h"

namespace TevAgent {

/// Tries a component against the interface contract, item by item. Used by one thread.
class ComponentCheck {
public:
    /// The component is the one of the library `libraryPath`; whatever it depends on is initialized in `hostAgent`,
    /// which outlives this object and was not started.
    ComponentCheck(Agent& hostAgent, std::string libraryPath);

    /// Tries every item, in order, and tells each result as soon as it is there; an item is not tried once one has
    /// failed. To be called once. Returns whether all passed. Throws `Interrupted`.
    bool run(const std::function<void(const CheckResult&)>& tell);

private:
    // The items: each returns a remark, and throws `Failure` when it fails.
    std::string load();
    std::string verifyTables();
    std::string startAndStop();
    std::string list();
    std::string read();

    Agent& agent;
    const std::string path;
    ComponentLibrary* library = nullptr;
    std::string component;
    std::vector<std::string> keys;
};

}  // namespace TevAgent

#endif
