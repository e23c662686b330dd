#include "AgentProcess.h"

#include <fcntl.h>
#include <linux/securebits.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "FileText.h"

namespace TevTest {

namespace {

void direct(const std::string& file, int descriptor) {
    const int opened = open(file.c_str(), O_WRONLY | O_CREAT, 0600);
    if (opened == -1 || dup2(opened, descriptor) == -1) {
        _exit(125);
    }
    close(opened);
}

void directOutput(const AgentProcess::Setting& setting, const std::string& outFile) {
    int ends[2];
    if (setting.isReaderGone && pipe(ends) == 0) {
        close(ends[0]);
        dup2(ends[1], STDOUT_FILENO);
        close(ends[1]);
        return;
    }
    direct(setting.outputFile.empty() ? outFile : setting.outputFile, STDOUT_FILENO);
    if (setting.isOutputClosed) {
        close(STDOUT_FILENO);
    }
}

/// From the next `exec` on, root is a user like any other.
void giveUpPrivileges() {
    if (geteuid() == 0 && prctl(PR_SET_SECUREBITS, SECBIT_NOROOT) != 0) {
        _exit(124);
    }
}

/// What a program that has ended, but was not reaped yet, has read.
std::uint64_t bytesReadBy(pid_t pid) {
    std::ifstream counters("/proc/" + std::to_string(pid) + "/io");
    std::string name;
    std::uint64_t bytes = 0;
    if (!(counters >> name >> bytes) || name != "rchar:") {
        throw std::runtime_error("the system does not tell what the program has read");
    }
    return bytes;
}

/// What the child does up to the program's `main`. The test has no other threads.
[[noreturn]] void become(const std::vector<std::string>& arguments, const AgentProcess::Setting& setting,
                         const std::string& outFile, const std::string& errFile) {
    direct(errFile, STDERR_FILENO);
    directOutput(setting, outFile);
    // Whatever the test was started with.
    signal(SIGPIPE, SIG_DFL);
    signal(SIGINT, setting.isSigintIgnored ? SIG_IGN : SIG_DFL);
    if (setting.isUnprivileged) {
        giveUpPrivileges();
    }
    for (const char* name : {"TEV_CONFIG_DIR", "TEV_LOG_FILE", "TEV_LOG_LEVEL"}) {
        unsetenv(name);
    }
    for (const auto& [name, value] : setting.environment) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    std::vector<char*> words = {const_cast<char*>("tev-agent")};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    if (chdir(setting.workingFolder.c_str()) == 0) {
        execv(setting.program.c_str(), words.data());
    }
    _exit(126);
}

}  // namespace

AgentProcess::AgentProcess(const std::vector<std::string>& arguments, const Setting& setting)
    : outFile(folder.write("out", "")), errFile(folder.write("err", "")), pid(fork()) {
    if (pid == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (pid == 0) {
        become(arguments, setting, outFile, errFile);
    }
}

AgentProcess::~AgentProcess() {
    if (pid != -1) {
        kill(pid, SIGKILL);
        reap(true);
    }
}

AgentOutcome AgentProcess::run(const std::vector<std::string>& arguments) {
    return run(arguments, Setting{});
}

AgentOutcome AgentProcess::run(const std::vector<std::string>& arguments, const Setting& setting) {
    return AgentProcess(arguments, setting).wait();
}

void AgentProcess::waitForError(const std::string& text) {
    while (contents(errFile).find(text) == std::string::npos) {
        if (reap(false) && contents(errFile).find(text) == std::string::npos) {
            throw std::runtime_error("the program ended without \"" + text + "\": " + contents(errFile));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void AgentProcess::interrupt() const {
    if (pid != -1) {
        kill(pid, SIGINT);
    }
}

bool AgentProcess::hasEnded() {
    return reap(false);
}

AgentOutcome AgentProcess::wait() {
    reap(true);
    outcome.out = contents(outFile);
    outcome.err = contents(errFile);
    return outcome;
}

bool AgentProcess::reap(bool isWaiting) {
    if (pid == -1) {
        return true;
    }
    siginfo_t ended{};
    const int options = WEXITED | WNOWAIT | (isWaiting ? 0 : WNOHANG);
    while (waitid(P_PID, static_cast<id_t>(pid), &ended, options) == -1 && errno == EINTR) {
    }
    if (ended.si_pid == 0) {
        return false;
    }
    outcome.bytesRead = bytesReadBy(pid);
    int state = 0;
    waitpid(pid, &state, 0);
    outcome.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    outcome.signal = WIFSIGNALED(state) ? WTERMSIG(state) : 0;
    pid = -1;
    return true;
}

}  // namespace TevTest
