#include "SigpipeGuard.h"

#include <cerrno>
#include <ctime>

namespace Tev {

SigpipeGuard::SigpipeGuard() {
    sigset_t pending;
    sigpending(&pending);
    pendingBefore = sigismember(&pending, SIGPIPE) == 1;
    sigemptyset(&sigpipe);
    sigaddset(&sigpipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &sigpipe, &maskBefore);
}

SigpipeGuard::~SigpipeGuard() {
    if (!pendingBefore) {
        const timespec noTime{};
        while (sigtimedwait(&sigpipe, nullptr, &noTime) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
}

}  // namespace Tev
