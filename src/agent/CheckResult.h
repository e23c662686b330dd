#ifndef TEV_AGENT_CHECK_RESULT_H
#define TEV_AGENT_CHECK_RESULT_H

#include <optional>
#include <string>
#include <string_view>

namespace TevAgent {

/// How one item of a component's check came out.
struct CheckResult {
    enum class Outcome {
        Passed,
        Failed,   ///< against the interface contract
        Skipped,  ///< not tried
        Warning,  ///< what the contract leaves open, but a host may stumble over
        Crashed   ///< the process came down
    };

    std::string id;           ///< "group.name"
    std::string description;  ///< what the contract asks, as a sentence without its full stop
    Outcome outcome = Outcome::Passed;
    std::string remark;  ///< what was seen, or why it was skipped; may be empty

    /// Whether it counts against the component.
    bool isBad() const { return outcome == Outcome::Failed || outcome == Outcome::Crashed; }

    /// The word for an outcome: "passed", "failed", "skipped", "warning" or "crashed".
    static const char* word(Outcome outcome);

    /// The outcome of a word; nothing when it is another.
    static std::optional<Outcome> outcomeOf(std::string_view word);
};

}  // namespace TevAgent

#endif
