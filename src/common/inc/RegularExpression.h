#ifndef TEV_REGULAR_EXPRESSION_H
#define TEV_REGULAR_EXPRESSION_H

#include <memory>
#include <string>

#include "TevCommonApi.h"

namespace Tev {

/// A POSIX regular expression over bytes, as `regcomp` and `regexec` match it in the C locale, whatever locale the
/// process has set. Pattern and text end at their first NUL byte.
///
/// Thread-safe once constructed. A pattern made only of literals, `.*` and the two anchors is matched by plain
/// substring search, in linear time and without a lock; any other pattern takes glibc's lock on the compiled
/// expression.
class TEV_COMMON_API RegularExpression {
public:
    /// Compiles `pattern`; `compileFlags` are those of `regcomp`. Throws `TevException` (code -1) with the pattern and
    /// the reason when it cannot be compiled.
    RegularExpression(const std::string& pattern, int compileFlags);
    ~RegularExpression();
    RegularExpression(const RegularExpression&) = delete;
    RegularExpression& operator=(const RegularExpression&) = delete;

    /// Returns 1 when `text` matches, 0 when not; `flags` are those of `regexec`. Throws `TevException`: code -10
    /// when memory runs out, -1 for flags that `regexec` does not know. REG_STARTEND has no effect.
    int match(const std::string& text, int flags) const;

private:
    struct Compiled;
    const std::unique_ptr<const Compiled> compiled;
};

}  // namespace Tev

#endif
