#ifndef TEV_SIGPIPE_GUARD_H
#define TEV_SIGPIPE_GUARD_H

#include <csignal>

namespace Tev {

/// Lets the calling thread write to a pipe that nobody reads without a SIGPIPE: the write fails with EPIPE instead.
/// The process's own handling of the signal, and one that was pending before, stay as they are.
class SigpipeGuard {
public:
    SigpipeGuard();
    ~SigpipeGuard();
    SigpipeGuard(const SigpipeGuard&) = delete;
    SigpipeGuard& operator=(const SigpipeGuard&) = delete;

private:
    sigset_t sigpipe;
    sigset_t maskBefore;
    bool pendingBefore;  // it is blocked then, and one more changes nothing
};

}  // namespace Tev

#endif
