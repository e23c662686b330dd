#ifndef TEV_AGENT_SHELL_WORDS_H
#define TEV_AGENT_SHELL_WORDS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TevAgent {

/// The words of a line, quoted as for a POSIX shell: blanks part them; a backslash, '...' and "..." take their meaning
/// from characters; inside "..." a backslash does so for " and itself only. What follows a # at a word's beginning is a
/// comment. Nothing is expanded.
class ShellWords {
public:
    enum class Quote { None, Single, Double };

    /// A line up to the place where the next character goes.
    struct Begun {
        std::vector<std::string> before;
        std::string word;  ///< the one that would go on; empty for a new one
        Quote quote;       ///< that it stands in
    };

    /// Throws `Failure` (wrong usage) when a quotation does not end.
    static std::vector<std::string> of(std::string_view line);

    /// Nothing where what follows is part of a comment, or the character behind a backslash.
    static std::optional<Begun> begun(std::string_view line);

    /// How a word that stands in such a quotation goes on with `text`.
    static std::string continued(std::string_view text, Quote quote);

    /// What ends such a word.
    static std::string end(Quote quote);
};

}  // namespace TevAgent

#endif
