#include "OwnProgram.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "Descriptor.h"
#include "Failure.h"

namespace TevAgent {

namespace {

[[noreturn]] void fail(int error) {
    throw Failure(ExitStatus::OperationFailed,
                  "the check cannot be started: " + std::generic_category().message(error));
}

/// Where the child tells why it cannot become the program; closed, with nothing told, once it has.
class Report {
public:
    Report() {
        if (pipe2(ends, O_CLOEXEC) != 0) {
            fail(errno);
        }
    }
    ~Report() {
        close(ends[0]);
        close(ends[1]);
    }
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    [[noreturn]] void endWith(int error) const {
        Descriptor::write(ends[1], {reinterpret_cast<const char*>(&error), sizeof error});
        _exit(1);
    }

    /// What the child told: an error number, or 0.
    int wait() {
        close(std::exchange(ends[1], -1));
        int error = 0;
        while (read(ends[0], &error, sizeof error) == -1 && errno == EINTR) {
        }
        return error;
    }

private:
    int ends[2] = {-1, -1};
};

/// What the child does up to the program's `main`. Other threads may hold locks, so nothing is allocated.
[[noreturn]] void become(char* const* words, const OwnProgram::Surroundings& surroundings, pid_t starter,
                         const Report& report) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != starter) {
        _exit(1);  // it was gone before
    }
    if (surroundings.isApart) {
        setpgid(0, 0);
    }
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (nothing == -1 || dup2(nothing, STDIN_FILENO) == -1 || dup2(surroundings.error, STDERR_FILENO) == -1 ||
        (surroundings.output != -1 && dup2(surroundings.output, STDOUT_FILENO) == -1)) {
        report.endWith(errno);
    }
    if (surroundings.output == -1) {
        close(STDOUT_FILENO);
    }
    execv("/proc/self/exe", words);
    report.endWith(errno);
}

}  // namespace

pid_t OwnProgram::start(const std::vector<std::string>& arguments, const Surroundings& surroundings) {
    std::vector<char*> words = {const_cast<char*>("tev-agent")};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    Report report;
    const pid_t starter = getpid();
    const pid_t process = fork();
    if (process == -1) {
        fail(errno);
    }
    if (process == 0) {
        become(words.data(), surroundings, starter, report);
    }
    if (const int error = report.wait(); error != 0) {
        waitpid(process, nullptr, 0);
        fail(error);
    }
    return process;
}

}  // namespace TevAgent
