#ifndef TEV_AGENT_UTF8_H
#define TEV_AGENT_UTF8_H

#include <cstddef>
#include <string>
#include <string_view>

namespace TevAgent {

/// Texts of components are bytes; what the agent writes is UTF-8.
class Utf8 {
public:
    /// `text` with U+FFFD in place of each byte that is not part of a well-formed character.
    static std::string repaired(std::string_view text);

    /// How many characters well-formed `text` has: its width on a terminal, as far as tables go.
    static std::size_t length(std::string_view text);
};

}  // namespace TevAgent

#endif
