#include "ExitGuard.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "Barrier.h"
#include "Diagnostics.h"
#include "ExitStatus.h"

namespace TevAgent {

namespace {

std::atomic<bool> isGuarded{false};

/// Runs in the thread that called `exit`.
void refuseExit() {
    if (!isGuarded) {
        return;
    }
    // `exit` would have written what is still in the buffer, which may tell why it was called.
    std::fflush(stdout);
    Diagnostics::sayAtOnce(Barrier::blame("called exit"));
    _exit(static_cast<int>(ExitStatus::BroughtDown));
}

}  // namespace

ExitGuard::ExitGuard() {
    isGuarded = std::atexit(refuseExit) == 0;
}

ExitGuard::~ExitGuard() {
    isGuarded = false;
}

}  // namespace TevAgent
