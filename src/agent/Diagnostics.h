#ifndef TEV_AGENT_DIAGNOSTICS_H
#define TEV_AGENT_DIAGNOSTICS_H

#include <string>
#include <vector>

namespace TevAgent {

/// What the operator is told of failures: sentences on standard error, one a line, each after "tev-agent: ".
///
/// Control characters are written as escapes, so one sentence can never pose as two, and a byte that is not UTF-8 as
/// U+FFFD. Thread-safe; a line is written whole.
class Diagnostics {
public:
    /// Says `sentence`: to the innermost `Capture` of the calling thread, or to the operator when there is none.
    static void say(const std::string& sentence) noexcept;

    /// Says `sentence` to the operator whatever the thread keeps, because the program ends.
    static void sayAtOnce(const std::string& sentence) noexcept;

    /// While it lives, all that is said to the operator begins with the line of the script that it is about: "line 3:
    /// ". One at a time.
    class ScriptLine {
    public:
        explicit ScriptLine(unsigned long number);
        ~ScriptLine();
        ScriptLine(const ScriptLine&) = delete;
        ScriptLine& operator=(const ScriptLine&) = delete;
    };

    /// Keeps what its thread says while it lives, so that a caller can make it the reason of a failure of its own and
    /// the operator reads it once. What was not taken is said when the capture ends. Lives on its thread's stack.
    class Capture {
    public:
        Capture();
        ~Capture();
        Capture(const Capture&) = delete;
        Capture& operator=(const Capture&) = delete;

        /// Whether nothing was said, or nothing since it was taken.
        bool isEmpty() const { return sentences.empty(); }

        /// What was said, joined by "; ", and no longer kept; `otherwise` when nothing was.
        std::string takeOr(const std::string& otherwise);

    private:
        friend class Diagnostics;

        Capture* const outer;
        std::vector<std::string> sentences;
    };
};

}  // namespace TevAgent

#endif
