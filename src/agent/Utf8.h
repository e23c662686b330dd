#ifndef TEV_AGENT_UTF8_H
#define TEV_AGENT_UTF8_H

#include <cstddef>
#include <string>
#include <string_view>

namespace TevAgent {

/// Texts of components are bytes; what the agent writes is UTF-8, whatever the locale of the process.
class Utf8 {
public:
    /// Takes the first character off `text`, which is not empty, and returns its code. A byte that is not part of a
    /// well-formed character is taken for U+FFFD.
    static char32_t takeFirst(std::string_view& text);

    /// Whether `byte` is one of a character's, but not its first.
    static bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U; }

    /// `text` with U+FFFD in place of each byte that is not part of a well-formed character.
    static std::string repaired(std::string_view text);

    /// How many columns a terminal shows well-formed `text` without control characters in: two for a character of
    /// double width, none for one that joins the character before it.
    static std::size_t columns(std::string_view text);

    /// The longest part that such a `text` begins with and that fits into so many columns. No character is cut in two.
    static std::string_view fitted(std::string_view text, std::size_t columns);
};

}  // namespace TevAgent

#endif
