#ifndef TEV_AGENT_RETURN_CODE_H
#define TEV_AGENT_RETURN_CODE_H

#include <string>

#include "TevReturnT.h"

namespace TevAgent {

/// A return code as the operator reads it.
class ReturnCode {
public:
    /// The code, with its meaning where it has one that all share: "-2 (not found)", "-13".
    static std::string text(TevReturnT code);
};

}  // namespace TevAgent

#endif
