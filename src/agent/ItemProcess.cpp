#include "ItemProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <optional>
#include <system_error>
#include <utility>

#include "ExitStatus.h"
#include "Failure.h"
#include "Interruption.h"
#include "JsonText.h"
#include "TemporaryFile.h"

namespace TevAgent {

namespace {

/// How a process is started: a group of its own, so that it can be ended with all that it started, and descriptors of
/// ours in place of its own.
class SpawnSettings {
public:
    SpawnSettings(const TemporaryFile& out, const TemporaryFile& err) {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, out.descriptor(), STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, err.descriptor(), STDERR_FILENO);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    }

    ~SpawnSettings() {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }

    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

/// A run of this program; killed at the object's end if it still goes on, with all that it started.
class Run {
public:
    Run(std::vector<std::string> arguments, const TemporaryFile& out, const TemporaryFile& err) {
        const SpawnSettings settings(out, err);
        std::vector<char*> words;
        words.reserve(arguments.size() + 1);
        for (std::string& argument : arguments) {
            words.push_back(argument.data());
        }
        words.push_back(nullptr);
        const int error =
            posix_spawn(&pid, "/proc/self/exe", &settings.actions, &settings.attributes, words.data(), environ);
        // Not by the C library's function, which its header does not declare for C++.
        descriptor = error == 0 ? static_cast<int>(syscall(SYS_pidfd_open, pid, 0)) : -1;
        if (error != 0) {
            throw Failure(ExitStatus::OperationFailed,
                          "cannot start a process to check in: " + std::generic_category().message(error));
        }
    }

    ~Run() {
        kill(-pid, SIGKILL);
        if (!isReaped) {
            waitpid(pid, nullptr, 0);
        }
        close(descriptor);
    }

    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    /// How it ended, as `waitpid` tells; nothing when it goes on beyond the limit.
    std::optional<int> wait(std::chrono::seconds limit) {
        if (!Interruption::waitForInput(descriptor, std::chrono::steady_clock::now() + limit)) {
            return std::nullopt;
        }
        int status = 0;
        waitpid(pid, &status, 0);
        isReaped = true;
        return status;
    }

private:
    pid_t pid = -1;
    int descriptor = -1;
    bool isReaped = false;
};

std::string signalText(int signal) {
    const char* const name = sigabbrev_np(signal);
    return name == nullptr ? "signal " + std::to_string(signal) : std::string("SIG") + name;
}

/// The last thing that the run said of itself; empty when it said nothing.
std::string lastWord(const std::string& err) {
    const std::string begin = "tev-agent: ";
    const std::size_t at = err.rfind(begin);
    return at == std::string::npos ? "" : err.substr(at + begin.size(), err.find('\n', at) - at - begin.size());
}

std::optional<CheckResult> resultIn(const std::string& out) {
    try {
        const std::vector<CheckResult> results = JsonText::checkResults(out);
        return results.size() == 1 ? std::optional(results.front()) : std::nullopt;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

}  // namespace

ItemProcess::ItemProcess(std::vector<std::string> commandLine, std::chrono::seconds limit)
    : arguments(std::move(commandLine)), timeLimit(limit) {
    const rlimit none{};
    setrlimit(RLIMIT_CORE, &none);
}

CheckResult ItemProcess::attempt(const CheckItem& item) const {
    using Outcome = CheckResult::Outcome;
    Interruption::check();
    std::vector<std::string> words = {"tev-agent"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    words.insert(words.end(), {"--only", item.id});
    const TemporaryFile out;
    const TemporaryFile err;
    Run run(words, out, err);
    const std::optional<int> status = run.wait(timeLimit);
    CheckResult result{item.id, item.description, Outcome::Crashed, ""};
    if (!status) {
        result.outcome = Outcome::Failed;
        result.remark = "it did not return within " + std::to_string(timeLimit.count()) + " s";
        return result;
    }
    const std::optional<CheckResult> told = resultIn(out.text());
    if (WIFSIGNALED(*status)) {
        result.remark = signalText(WTERMSIG(*status)) + (told ? ", once the item was done" : "");
        return result;
    }
    const int code = WEXITSTATUS(*status);
    if (told && code == static_cast<int>(told->isBad() ? ExitStatus::OperationFailed : ExitStatus::Done)) {
        return *told;
    }
    const std::string said = lastWord(err.text());
    result.remark = said.empty() ? "the process ended with status " + std::to_string(code) : said;
    return result;
}

}  // namespace TevAgent
