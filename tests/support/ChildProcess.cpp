#include "ChildProcess.h"

#include <fcntl.h>
#include <linux/securebits.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "FileText.h"
#include "Wait.h"

namespace TevTest {

namespace {

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> list;
    for (std::string& text : texts) {
        list.push_back(text.data());
    }
    list.push_back(nullptr);
    return list;
}

/// Whether programs under test do something else where the variable `entry`, "NAME=value", is set.
bool isTold(const std::string& entry) {
    const std::string name = entry.substr(0, entry.find('='));
    return name.compare(0, 4, "TEV_") == 0 || name == "TERM" || name == "COLUMNS" || name == "NO_COLOR";
}

std::vector<std::string> environmentWith(const std::map<std::string, std::string>& added) {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (!isTold(*variable)) {
            variables.emplace_back(*variable);
        }
    }
    for (const auto& [name, value] : added) {
        variables.push_back(name + "=" + value);
    }
    return variables;
}

/// Makes `target` what `source` is, or the file where there is no `source`.
void direct(int target, int source, const char* file, int flags) {
    if (source == ChildProcess::closed) {
        close(target);
        return;
    }
    const int opened = source >= 0 ? source : open(file, flags, 0600);
    if (opened == -1 || dup2(opened, target) == -1) {
        _exit(125);
    }
    if (source < 0 && opened != target) {
        close(opened);
    }
}

/// The usual handling of every signal that a parent may have changed, whatever the test was started with.
void resetSignals(const std::vector<int>& ignored) {
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGCHLD}) {
        std::signal(number, SIG_DFL);
    }
    for (const int number : ignored) {
        std::signal(number, SIG_IGN);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void limitFileSize(rlim_t limit) {
    rlimit limits{};
    getrlimit(RLIMIT_FSIZE, &limits);
    limits.rlim_cur = std::min(limit, limits.rlim_cur);
    setrlimit(RLIMIT_FSIZE, &limits);
}

/// From the next `exec` on, root is a user like any other.
void giveUpPrivileges() {
    if (geteuid() == 0 && prctl(PR_SET_SECUREBITS, SECBIT_NOROOT) != 0) {
        _exit(124);
    }
}

/// What the child does up to the program's `main`; the test may have other threads, so nothing is allocated.
[[noreturn]] void become(const char* program, char* const* arguments, char* const* environment,
                         const ChildProcess::Setting& setting, const char* outFile, const char* errFile) {
    setsid();
    if (!setting.terminal.empty() && ioctl(open(setting.terminal.c_str(), O_RDWR), TIOCSCTTY, 0) != 0) {
        _exit(123);
    }
    direct(STDERR_FILENO, setting.err, errFile, O_WRONLY | O_CREAT | O_APPEND);
    direct(STDOUT_FILENO, setting.out, outFile, O_WRONLY | O_CREAT | O_APPEND);
    direct(STDIN_FILENO, setting.in, "/dev/null", O_RDONLY);
    resetSignals(setting.ignoredSignals);
    limitFileSize(setting.fileSizeLimit);
    if (setting.endsWithTest) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
    }
    if (setting.isUnprivileged) {
        giveUpPrivileges();
    }
    if (chdir(setting.workingFolder.c_str()) == 0) {
        execve(program, arguments, environment);
    }
    _exit(126);
}

/// What this process has read, and those of its children that it has reaped. Not every system tells an ordinary user
/// what a child has read that has ended.
std::uint64_t bytesReadByUs() {
    std::ifstream counters("/proc/self/io");
    std::string name;
    std::uint64_t bytes = 0;
    if (!(counters >> name >> bytes) || name != "rchar:") {
        throw std::runtime_error("the system does not tell what was read");
    }
    return bytes;
}

}  // namespace

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           const Setting& setting) {
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = environmentWith(setting.environment);
    const std::vector<char*> wordPointers = pointers(words);
    const std::vector<char*> variablePointers = pointers(variables);
    const std::string outFile = folder.path() / "out";
    const std::string errFile = folder.path() / "err";
    pid = fork();
    if (pid == -1) {
        throw std::system_error(errno, std::generic_category(), program);
    }
    if (pid == 0) {
        become(program.c_str(), wordPointers.data(), variablePointers.data(), setting, outFile.c_str(),
               errFile.c_str());
    }
}

ChildProcess::~ChildProcess() {
    if (pid != -1) {
        kill(pid, SIGKILL);
        reap(true);
    }
}

int ChildProcess::wait() {
    reap(true);
    return code;
}

bool ChildProcess::hasEnded() {
    return reap(false);
}

void ChildProcess::waitForError(const std::string& text) {
    const auto isThere = [&] { return err().find(text) != std::string::npos; };
    waitUntil([&] { return hasEnded() || isThere(); });
    if (!isThere()) {
        throw std::runtime_error("the program ended without \"" + text + "\": " + err());
    }
}

void ChildProcess::send(int signal) const {
    if (pid != -1) {
        kill(pid, signal);
    }
}

std::string ChildProcess::out() const {
    return contents(folder.path() / "out");
}

std::string ChildProcess::err() const {
    return contents(folder.path() / "err");
}

bool ChildProcess::reap(bool isWaiting) {
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
    const std::uint64_t before = bytesReadByUs();
    int state = 0;
    waitpid(pid, &state, 0);
    readBytes = bytesReadByUs() - before;
    code = WIFEXITED(state) ? WEXITSTATUS(state) : -WTERMSIG(state);
    pid = -1;
    return true;
}

}  // namespace TevTest
