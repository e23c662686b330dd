#include "RegularExpression.h"

#include <locale.h>
#include <regex.h>

#include <optional>
#include <string_view>

#include "TevException.h"
#include "WildcardPattern.h"

namespace Tev {

namespace {

/// Gives the calling thread the C locale while it lives.
class CLocaleScope {
public:
    CLocaleScope() : before(uselocale(cLocale())) {}
    ~CLocaleScope() { uselocale(before); }
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;

private:
    static locale_t cLocale() {
        static const locale_t locale = makeCLocale();
        return locale;
    }

    static locale_t makeCLocale() {
        const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        if (locale == nullptr) {
            throw TevException(TevReturnNoMemory, "No memory for the C locale");
        }
        return locale;
    }

    locale_t before;
};

std::string errorText(int code, const regex_t& expression) {
    std::string text(regerror(code, &expression, nullptr, 0), '\0');
    regerror(code, &expression, text.data(), text.size());
    text.pop_back();  // the NUL
    return text;
}

std::optional<WildcardPattern> withoutRegexec(const char* pattern, int compileFlags) {
    // Any further flag changes what matches.
    return (compileFlags & ~(REG_EXTENDED | REG_NOSUB)) == 0 ? WildcardPattern::parse(pattern) : std::nullopt;
}

}  // namespace

/// The expression as regexec takes it and, where it has that shape, as plain substrings.
struct RegularExpression::Compiled {
    Compiled(const char* pattern, int compileFlags) : wildcards(withoutRegexec(pattern, compileFlags)) {
        const CLocaleScope scope;
        const int code = regcomp(&expression, pattern, compileFlags);
        if (code != 0) {
            throw TevException("Bad regular expression \"%s\": %s", pattern, errorText(code, expression).c_str());
        }
    }
    ~Compiled() { regfree(&expression); }
    Compiled(const Compiled&) = delete;
    Compiled& operator=(const Compiled&) = delete;

    int execute(const char* text, int flags) const {
        const CLocaleScope scope;
        // REG_STARTEND would have regexec read bounds, and there are none.
        const int code = regexec(&expression, text, 0, nullptr, flags & ~REG_STARTEND);
        if (code != 0 && code != REG_NOMATCH) {
            throw TevException(code == REG_ESPACE ? TevReturnNoMemory : TevReturnFailure,
                               "Cannot match a regular expression: %s", errorText(code, expression).c_str());
        }
        return code == 0 ? 1 : 0;
    }

    const std::optional<WildcardPattern> wildcards;
    regex_t expression{};
};

RegularExpression::RegularExpression(const std::string& pattern, int compileFlags)
    : compiled(std::make_unique<Compiled>(pattern.c_str(), compileFlags)) {}

RegularExpression::~RegularExpression() = default;

int RegularExpression::match(const std::string& text, int flags) const {
    if (flags == 0 && compiled->wildcards) {
        const std::string_view whole = text;
        return compiled->wildcards->matches(whole.substr(0, whole.find('\0'))) ? 1 : 0;
    }
    return compiled->execute(text.c_str(), flags);
}

}  // namespace Tev
