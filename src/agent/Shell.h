#ifndef TEV_AGENT_SHELL_H
#define TEV_AGENT_SHELL_H

#include "Agent.h"
#include "ExitStatus.h"
#include "LineSource.h"
#include "Settings.h"
#include "StandardOutput.h"

namespace TevAgent {

/// Carries out commands, a line each, in one agent whose components are started. Where standard input and standard
/// error are a terminal an operator types them, else they are a script. Used by one thread.
class Shell {
public:
    /// All of them outlive this object.
    Shell(Agent& hostAgent, const Settings& sessionSettings, StandardOutput& resultOutput);

    /// Reads to the end, or to the command that ends it. Returns the status of the first command of a script that
    /// failed, 0 for an operator; that of what ended the shell, an interruption or, for an operator, the results'
    /// reader who has gone away. Throws `Interrupted`, and `Failure` (not started) when no line can be read.
    ExitStatus run();

private:
    ExitStatus carryOut(const LineSource::Line& line);
    ExitStatus check(const Settings& settings);

    Agent& agent;
    const Settings& session;
    StandardOutput& output;
    const bool isInteractive;
    bool isOver = false;
};

}  // namespace TevAgent

#endif
