#ifndef TEV_AGENT_ENDING_H
#define TEV_AGENT_ENDING_H

#include <functional>

#include "ExitStatus.h"

namespace TevAgent {

/// How commands end.
class Ending {
public:
    /// Carries out `command`. Returns what it returns; when it throws, says why and returns the status of that.
    /// Of a reader who has gone away nothing is said: whoever ends the reading knows.
    static ExitStatus of(const std::function<ExitStatus()>& command);
};

}  // namespace TevAgent

#endif
