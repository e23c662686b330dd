#ifndef TEV_AGENT_CHECK_RESULT_H
#define TEV_AGENT_CHECK_RESULT_H

#include <string>

namespace TevAgent {

/// How one item of a component's check came out.
struct CheckResult {
    std::string item;
    bool isPassed = false;
    std::string remark;  ///< why it failed, or what was seen; may be empty
};

}  // namespace TevAgent

#endif
