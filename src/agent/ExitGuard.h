#ifndef TEV_AGENT_EXIT_GUARD_H
#define TEV_AGENT_EXIT_GUARD_H

namespace TevAgent {

/// Keeps components from ending the program as if all was well: while it lives, whoever calls `exit`, with whatever
/// status, is told to the operator, and the exit status is that of `ExitStatus::BroughtDown`. There is one at a time.
class ExitGuard {
public:
    ExitGuard();
    ~ExitGuard();
    ExitGuard(const ExitGuard&) = delete;
    ExitGuard& operator=(const ExitGuard&) = delete;
};

}  // namespace TevAgent

#endif
