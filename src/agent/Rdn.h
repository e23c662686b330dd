#ifndef TEV_AGENT_RDN_H
#define TEV_AGENT_RDN_H

#include <optional>
#include <string_view>
#include <vector>

namespace TevAgent {

/// One step of a DN: the text "className=key". Both parts are views into the DN's text; neither is empty or holds "=",
/// "," or a control character.
struct Rdn {
    std::string_view className;
    std::string_view key;

    /// The steps of `dn` from the root on; nothing when `dn` is empty or not a DN.
    static std::optional<std::vector<Rdn>> sequence(std::string_view dn);
};

}  // namespace TevAgent

#endif
