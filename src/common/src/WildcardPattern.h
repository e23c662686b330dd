#ifndef TEV_WILDCARD_PATTERN_H
#define TEV_WILDCARD_PATTERN_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tev {

/// A regular expression made only of literals, `.*`, a `^` at its beginning and a `$` at its end, matched as `regexec`
/// does in the C locale, by substring search in linear time.
///
/// Immutable, hence thread-safe.
class WildcardPattern {
public:
    /// Takes `pattern` (without NUL bytes) apart. Gives nothing when it holds anything else, that is a character which
    /// has a meaning in a basic or an extended regular expression.
    static std::optional<WildcardPattern> parse(const std::string& pattern);

    /// Whether `text` (without NUL bytes) matches.
    bool matches(std::string_view text) const noexcept;

private:
    WildcardPattern(std::vector<std::string> literals, bool anchoredAtBegin, bool anchoredAtEnd);

    bool literal = false;             // the text is to be `prefix`, no more and no less
    std::string prefix;               // what the text begins with
    std::string suffix;               // what the text ends with, after the prefix
    std::vector<std::string> middle;  // what stands between the two, in this order; none is empty
};

}  // namespace Tev

#endif
