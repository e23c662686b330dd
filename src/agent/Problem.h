#ifndef TEV_AGENT_PROBLEM_H
#define TEV_AGENT_PROBLEM_H

#include <string>

namespace TevAgent {

/// Why a file, or a part of it, cannot be used.
struct Problem {
    std::string file;
    unsigned long line = 0;  ///< counted from 1; 0 when the problem has no line
    std::string reason;

    /// "file:line: reason", or "file: reason" without a line. Control characters are written as escapes (`\n`,
    /// `\x1b`), so that the text is one line and no file can reach for the operator's terminal.
    std::string text() const;
};

}  // namespace TevAgent

#endif
