#ifndef TEV_AGENT_EXIT_STATUS_H
#define TEV_AGENT_EXIT_STATUS_H

namespace TevAgent {

/// How the program ended, for the shell.
enum class ExitStatus {
    Done = 0,
    OperationFailed = 1,  ///< an unknown instance or attribute, a failed check, results that cannot be written
    WrongUsage = 2,
    NotStarted = 3,            ///< the agent could not start: its inputs or a component cannot be used
    BroughtDown = NotStarted,  ///< a component did not return from `stop`, or called `exit`
    Interrupted = 130,
    ReaderGone = 141  ///< nobody reads the results any more; as a shell has it for programs that SIGPIPE ends
};

}  // namespace TevAgent

#endif
