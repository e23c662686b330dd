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

#include "Descendants.h"
#include "ExitStatus.h"
#include "Failure.h"
#include "Interruption.h"
#include "JsonText.h"
#include "OwnProgram.h"
#include "TemporaryFile.h"

namespace TevAgent {

namespace {

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

bool hasEndedWith(int status, const CheckResult& told) {
    const ExitStatus expected = told.isBad() ? ExitStatus::OperationFailed : ExitStatus::Done;
    return WIFEXITED(status) && WEXITSTATUS(status) == static_cast<int>(expected);
}

/// What is said of a process that ended in another way than it should have.
std::string endText(int status, const std::string& err) {
    if (WIFSIGNALED(status)) {
        return signalText(WTERMSIG(status));
    }
    const std::string said = lastWord(err);
    return said.empty() ? "the process ended with status " + std::to_string(WEXITSTATUS(status)) : said;
}

/// The result of an item whose process came to a bad end only after it: the items that are about the end tell of that,
/// so that it is no fault of this one.
CheckResult withEnd(CheckResult result, const std::string& fault) {
    result.outcome = result.isBad() ? result.outcome : CheckResult::Outcome::Warning;
    result.remark += (result.remark.empty() ? "" : "; ") + fault + ", once the item was done";
    return result;
}

}  // namespace

/// A run of this program, which is ended with all that it started at the object's end at the latest.
class ItemProcess::Run {
public:
    Run(ItemProcess& itemProcess, const std::vector<std::string>& words)
        : owner(itemProcess),
          process(owner.start(words, out.descriptor(), err.descriptor())),
          // Not by the C library's function, which its header does not declare for C++.
          descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0))) {
        if (descriptor == -1) {
            const int error = errno;
            owner.end(process);
            throw Failure(ExitStatus::OperationFailed,
                          "the check cannot be watched: " + std::generic_category().message(error));
        }
    }

    ~Run() {
        if (!isReaped) {
            owner.end(process);
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
        isReaped = true;
        return owner.end(process);
    }

    /// What it wrote so far.
    const TemporaryFile out;
    const TemporaryFile err;

private:
    ItemProcess& owner;
    const pid_t process;
    const int descriptor;
    bool isReaped = false;
};

ItemProcess::ItemProcess(std::vector<std::string> checkWords, std::chrono::seconds limit)
    : subjectWords(std::move(checkWords)), timeLimit(limit), isAlone(Descendants::children().empty()) {
    const rlimit none{};
    setrlimit(RLIMIT_CORE, &none);
    if (isAlone) {
        Descendants::adopt();
    }
}

CheckResult ItemProcess::attempt(const CheckItem& item) {
    Interruption::check();
    std::vector<std::string> words = {"check", "--in-process", "--output", "json", "--only", item.id};
    words.insert(words.end(), subjectWords.begin(), subjectWords.end());
    Run run(*this, words);
    const std::optional<int> status = run.wait(timeLimit);
    const std::optional<CheckResult> told = resultIn(run.out.text());
    if (status && told && hasEndedWith(*status, *told)) {
        return *told;
    }
    const std::string fault = status ? endText(*status, run.err.text())
                                     : "it did not return within " + std::to_string(timeLimit.count()) + " s";
    if (told) {
        return withEnd(*told, fault);
    }
    const CheckResult::Outcome outcome = status ? CheckResult::Outcome::Crashed : CheckResult::Outcome::Failed;
    const char* const lost = run.err.isFull() ? "; it wrote more than is kept on standard error" : "";
    return {item.id, item.description, outcome, fault + lost};
}

pid_t ItemProcess::start(const std::vector<std::string>& words, int output, int error) {
    const Tev::AnnotatedLock lock(mutex);
    return *underWay.insert(OwnProgram::start(words, {output, error, true})).first;
}

int ItemProcess::end(pid_t process) {
    // Not by its group, which it may have left.
    kill(process, SIGKILL);
    int status = 0;
    waitpid(process, &status, 0);
    const Tev::AnnotatedLock lock(mutex);
    underWay.erase(process);
    // What items that are under way start stays below them, so the others are left of what has ended. Killed, they may
    // leave some in turn.
    for (bool isLeft = isAlone; isLeft;) {
        isLeft = false;
        for (const pid_t child : Descendants::children()) {
            if (underWay.count(child) == 0 && kill(child, SIGKILL) == 0) {
                waitpid(child, nullptr, 0);
                isLeft = true;
            }
        }
    }
    return status;
}

}  // namespace TevAgent
