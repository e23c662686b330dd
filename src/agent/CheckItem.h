#ifndef TEV_AGENT_CHECK_ITEM_H
#define TEV_AGENT_CHECK_ITEM_H

#include <string>

namespace TevAgent {

class CheckHost;

/// One thing that a component's check tries. The texts are those of `CheckResult`.
struct CheckItem {
    const char* id;
    const char* description;

    /// Tries it, in a host of its own, with nothing loaded yet. Returns a remark for an item that passed, maybe an
    /// empty one; ends with `CheckEnd` otherwise.
    std::string (*attempt)(CheckHost& host);

    /// Whether nothing that stands behind it in the list can be tried once it failed.
    bool isGate = false;
};

}  // namespace TevAgent

#endif
