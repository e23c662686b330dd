#ifndef TEV_AGENT_LINE_SOURCE_H
#define TEV_AGENT_LINE_SOURCE_H

#include <optional>
#include <string>

namespace TevAgent {

/// Where a shell has its lines from. Used by one thread.
class LineSource {
public:
    struct Line {
        std::string text;   ///< without its end
        std::string fault;  ///< why it cannot be used; empty when it can
    };

    LineSource() = default;
    virtual ~LineSource() = default;
    LineSource(const LineSource&) = delete;
    LineSource& operator=(const LineSource&) = delete;

    /// Nothing at the end. Throws `Interrupted` when the shell is to end, `Failure` (not started) when there can be no
    /// more lines.
    virtual std::optional<Line> next() = 0;
};

}  // namespace TevAgent

#endif
