#ifndef TEV_AGENT_CHECK_PROCESS_H
#define TEV_AGENT_CHECK_PROCESS_H

#include <string>
#include <vector>

#include "ExitStatus.h"
#include "StandardOutput.h"

namespace TevAgent {

/// A command in a program of its own: what loads a component anew cannot be carried out where one is at work.
class CheckProcess {
public:
    /// Runs this program with these arguments, nothing to read, and its results in `output`. Returns its status. An
    /// interruption is passed on to it; where standard input is a terminal, whose interrupt key reaches it, too, only a
    /// final one. Throws `Failure` (operation failed) when it cannot be started, or was ended by a signal.
    static ExitStatus run(const std::vector<std::string>& arguments, const StandardOutput& output);
};

}  // namespace TevAgent

#endif
