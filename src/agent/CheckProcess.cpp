#include "CheckProcess.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

#include "Failure.h"
#include "Interruption.h"
#include "OwnProgram.h"

namespace TevAgent {

namespace {

constexpr int pollSlice = 20;  // milliseconds

}  // namespace

ExitStatus CheckProcess::run(const std::vector<std::string>& arguments, const StandardOutput& output) {
    // Only the interrupt key of a terminal is sure to reach both programs, and the second signal would end the check at
    // once.
    const bool isApart = isatty(STDIN_FILENO) != 1;
    const pid_t id = OwnProgram::start(arguments, {output.get(), STDERR_FILENO, isApart});
    int end = 0;
    bool isToldToEnd = false;
    pid_t seen = 0;
    while ((seen = waitpid(id, &end, WNOHANG)) == 0) {
        const bool isToEnd = isApart ? Interruption::isRequested() : Interruption::isFinal();
        if (isToEnd && !std::exchange(isToldToEnd, true)) {
            kill(id, SIGTERM);
        }
        // Not for the child alone: a signal may come just before the wait, or to another thread.
        poll(nullptr, 0, pollSlice);
    }
    if (seen == -1) {
        throw Failure(ExitStatus::OperationFailed,
                      "how the check ended is not known: " + std::generic_category().message(errno));
    }
    if (WIFSIGNALED(end)) {
        throw Failure(ExitStatus::OperationFailed, std::string("the check was ended: ") + strsignal(WTERMSIG(end)));
    }
    return static_cast<ExitStatus>(WEXITSTATUS(end));
}

}  // namespace TevAgent
