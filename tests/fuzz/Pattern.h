#ifndef PATTERN_H
#define PATTERN_H

#include <regex.h>

#include <string>

#include "Require.h"

namespace TevFuzz {

/// An extended regular expression of POSIX, matched by the system.
class Pattern {
public:
    explicit Pattern(const std::string& text) {
        requireEqual(regcomp(&expression, text.c_str(), REG_EXTENDED | REG_NOSUB), 0, "the code of a pattern");
    }
    ~Pattern() { regfree(&expression); }
    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;

    /// Never for a text with a null character.
    bool matches(const std::string& text) const {
        return text.find('\0') == std::string::npos && regexec(&expression, text.c_str(), 0, nullptr, 0) == 0;
    }

private:
    regex_t expression{};
};

}  // namespace TevFuzz

#endif
