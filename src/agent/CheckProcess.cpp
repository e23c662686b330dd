#include "CheckProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

#include "Failure.h"
#include "Interruption.h"

namespace TevAgent {

namespace {

constexpr int pollSlice = 20;  // milliseconds

/// What the program has as its standard descriptors, and whether it has a process group of its own.
class SpawnSettings {
public:
    SpawnSettings(int output, bool isApart) {
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, isApart ? POSIX_SPAWN_SETPGROUP : 0);
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        if (output == -1) {
            posix_spawn_file_actions_addclose(&actions, STDOUT_FILENO);
        } else {
            posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        }
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

pid_t start(const std::vector<std::string>& arguments, const StandardOutput& output, bool isApart) {
    std::vector<char*> words = {const_cast<char*>("tev-agent")};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    const SpawnSettings settings(output.get(), isApart);
    pid_t id = -1;
    const int error =
        posix_spawn(&id, "/proc/self/exe", &settings.actions, &settings.attributes, words.data(), environ);
    if (error != 0) {
        throw Failure(ExitStatus::OperationFailed,
                      "the check cannot be started: " + std::generic_category().message(error));
    }
    return id;
}

}  // namespace

ExitStatus CheckProcess::run(const std::vector<std::string>& arguments, const StandardOutput& output) {
    // Only the interrupt key of a terminal is sure to reach both programs, and the second signal would end the check at
    // once.
    const bool isApart = isatty(STDIN_FILENO) != 1;
    const pid_t id = start(arguments, output, isApart);
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
