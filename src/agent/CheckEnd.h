#ifndef TEV_AGENT_CHECK_END_H
#define TEV_AGENT_CHECK_END_H

#include <string>

#include "CheckResult.h"

namespace TevAgent {

/// Thrown to end an item of a check with another outcome than passed. No failure of the agent, so that nobody who
/// handles those takes it for one.
struct CheckEnd {
    CheckResult::Outcome outcome;
    std::string remark;

    [[noreturn]] static void fail(const std::string& remark) { throw CheckEnd{CheckResult::Outcome::Failed, remark}; }
    [[noreturn]] static void warn(const std::string& remark) { throw CheckEnd{CheckResult::Outcome::Warning, remark}; }
    [[noreturn]] static void skip(const std::string& remark) { throw CheckEnd{CheckResult::Outcome::Skipped, remark}; }
};

}  // namespace TevAgent

#endif
