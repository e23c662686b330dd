#include "ClientProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "Deadline.h"
#include "TevException.h"

// The header of glibc 2.36 does not say that these are C.
extern "C" {
#include <sys/pidfd.h>
}

namespace Tev {

namespace {

constexpr int timeToLeave = 100;  // milliseconds

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;

    Pipe() {
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "no pipe");
        }
        try {
            writeEnd = FileDescriptor(ends[1], "no pipe");
        } catch (...) {
            close(ends[0]);
            throw;
        }
        readEnd = FileDescriptor(ends[0], "no pipe");
    }
};

void doNotBlock(const FileDescriptor& descriptor) {
    fcntl(descriptor.get(), F_SETFL, fcntl(descriptor.get(), F_GETFL) | O_NONBLOCK);
}

/// How the process is started: signals, session, descriptors.
class SpawnSettings {
public:
    SpawnSettings() {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
        sigset_t signals;
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnSettings() {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    void give(const FileDescriptor& source, int target) {
        check(posix_spawn_file_actions_adddup2(&actions, source.get(), target));
    }

    /// The first terminal that a new session opens becomes its own. The client keeps it open throughout, so that this
    /// side never sees it closed before the end.
    void openTerminal(const std::string& path, int target) {
        check(posix_spawn_file_actions_addopen(&actions, target, path.c_str(), O_RDWR, 0));
    }

    void closeFrom(int first) { check(posix_spawn_file_actions_addclosefrom_np(&actions, first)); }

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;

private:
    static void check(int error) {
        if (error != 0) {
            throw std::bad_alloc();
        }
    }
};

std::vector<char*> pointers(const std::vector<std::string>& words) {
    std::vector<char*> list;
    list.reserve(words.size() + 1);
    for (const std::string& word : words) {
        list.push_back(const_cast<char*>(word.c_str()));
    }
    list.push_back(nullptr);
    return list;
}

}  // namespace

ClientProcess::ClientProcess(const std::vector<std::string>& words, const FileDescriptor& file,
                             const PseudoTerminal& terminal) {
    static const std::vector<std::string> environment = {"PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8"};
    Pipe in;
    Pipe out;
    Pipe err;
    SpawnSettings settings;
    settings.give(in.readEnd, STDIN_FILENO);
    settings.give(out.writeEnd, STDOUT_FILENO);
    settings.give(err.writeEnd, STDERR_FILENO);
    settings.give(file, 3);
    settings.openTerminal(terminal.childPath(), 4);
    settings.closeFrom(5);
    // A fork would copy the page tables of a host of any size.
    const int failure = posix_spawn(&pid, words[0].c_str(), &settings.actions, &settings.attributes,
                                    pointers(words).data(), pointers(environment).data());
    if (failure != 0) {
        throw TevException(failure == ENOMEM ? TevReturnNoMemory : TevReturnFailure,
                           "the SFTP client %s cannot be started: %s", words[0].c_str(),
                           std::generic_category().message(failure).c_str());
    }
    input = std::move(in.writeEnd);
    output = std::move(out.readEnd);
    error = std::move(err.readEnd);
    for (const FileDescriptor* const descriptor : {&input, &output, &error}) {
        doNotBlock(*descriptor);
    }
    openHandle();
}

void ClientProcess::openHandle() {
    const int opened = pidfd_open(pid, 0);
    if (opened < 0 && errno == ESRCH) {
        return;  // it has ended already, and nobody has to wait for it
    }
    try {
        handle = FileDescriptor(opened, "no handle of the SFTP client");
    } catch (...) {
        end();
        throw;
    }
}

ClientProcess::~ClientProcess() {
    end();
}

void ClientProcess::interrupt() const {
    pidfd_send_signal(handle.get(), SIGINT, nullptr, 0);
}

bool ClientProcess::hasEnded() const noexcept {
    if (handle.get() < 0) {
        return true;
    }
    pollfd waiting{handle.get(), POLLIN, 0};
    return TEMP_FAILURE_RETRY(poll(&waiting, 1, 0)) > 0;
}

void ClientProcess::end() noexcept {
    if (pid <= 0) {
        return;
    }
    input.close();
    siginfo_t ignored{};
    // Nobody else has that number while the process is there, or ended but not yet waited for.
    const auto isOurs = [&] {
        return waitid(P_PID, static_cast<id_t>(pid), &ignored, WEXITED | WNOHANG | WNOWAIT) == 0;
    };
    if (!hasEnded() && isOurs()) {
        // Asked to leave, the client waits for the process that it has started; killed, it would leave that to others.
        kill(-pid, SIGTERM);
        const Deadline end(timeToLeave);
        while (!hasEnded() && !end.hasPassed()) {
            pollfd waiting{handle.get(), POLLIN, 0};
            poll(&waiting, 1, end.timeLeft(timeToLeave));
        }
    }
    if (isOurs()) {
        kill(-pid, SIGKILL);
    }
    TEMP_FAILURE_RETRY(waitpid(pid, nullptr, 0));
    pid = -1;
}

}  // namespace Tev
