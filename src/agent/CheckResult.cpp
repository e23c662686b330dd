#include "CheckResult.h"

namespace TevAgent {

const char* CheckResult::word(Outcome outcome) {
    switch (outcome) {
        case Outcome::Passed:
            return "passed";
        case Outcome::Failed:
            return "failed";
        case Outcome::Skipped:
            return "skipped";
        case Outcome::Warning:
            return "warning";
        default:
            return "crashed";
    }
}

std::optional<CheckResult::Outcome> CheckResult::outcomeOf(std::string_view word) {
    for (const Outcome outcome :
         {Outcome::Passed, Outcome::Failed, Outcome::Skipped, Outcome::Warning, Outcome::Crashed}) {
        if (word == CheckResult::word(outcome)) {
            return outcome;
        }
    }
    return std::nullopt;
}

}  // namespace TevAgent
