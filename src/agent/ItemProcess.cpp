#include "ItemProcess.h"

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
#include "OwnProgram.h"
#include "TemporaryFile.h"

namespace TevAgent {

namespace {

/// A run of this program in a process group of its own, so that it can be ended with all that it started, which is
/// done at the object's end at the latest.
class Run {
public:
    Run(const std::vector<std::string>& arguments, const TemporaryFile& out, const TemporaryFile& err)
        : process(OwnProgram::start(arguments, {out.descriptor(), err.descriptor(), true})),
          // Not by the C library's function, which its header does not declare for C++.
          descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0))) {
        if (descriptor == -1) {
            const int error = errno;
            end();
            throw Failure(ExitStatus::OperationFailed,
                          "the check cannot be watched: " + std::generic_category().message(error));
        }
    }

    ~Run() {
        if (!isReaped) {
            end();
        }
        close(descriptor);
    }

    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    /// How it ended, as `waitpid` tells; nothing when it goes on beyond the limit.
    std::optional<int> wait(std::chrono::seconds limit) {
        const bool hasEnded = Interruption::waitForInput(descriptor, std::chrono::steady_clock::now() + limit);
        return hasEnded ? std::optional(end()) : std::nullopt;
    }

private:
    /// The group goes first: its number is nobody else's only as long as its leader is not waited for.
    int end() {
        kill(-process, SIGKILL);
        int status = 0;
        waitpid(process, &status, 0);
        isReaped = true;
        return status;
    }

    const pid_t process;
    const int descriptor;
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
    std::vector<std::string> words = arguments;
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
