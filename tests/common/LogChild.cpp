#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <map>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "LoggingWrapper.h"

// A program for the tests of the log that need a process to themselves. Its arguments name what it does.

namespace {

using Tev::LoggingWrapper;

/// Which of the large pieces of memory cannot be had, counted from the moment that this is set.
struct Shortage {
    int begin = 0;
    int end = 0;
};

Shortage shortage;
int largePieces = 0;

bool isRefused(std::size_t size) {
    if (size <= 1024 || shortage.begin == shortage.end) {
        return false;
    }
    const int piece = largePieces++;
    return piece >= shortage.begin && piece < shortage.end;
}

void setShortage(Shortage wanted) {
    shortage = wanted;
    largePieces = 0;
}

}  // namespace

// The log takes its memory from here.
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return isRefused(size) ? nullptr : std::malloc(size);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept {
    std::free(memory);
}

namespace {

void log(const std::string& text) {
    LoggingWrapper::instance().log_printf("child", 1, 1, "%s", text.c_str());
}

void printLevel() {
    std::printf("%d", LoggingWrapper::instance().get_level());
}

void logOnce() {
    log("record");
}

/// Shows the mode of the log file and the flags of the descriptor that is open on it.
void showFile() {
    umask(0);
    log("record");
    const std::filesystem::path file = std::getenv("TEV_LOG_FILE");
    struct stat status {};
    stat(file.c_str(), &status);
    std::printf("mode %o", status.st_mode & 07777U);
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry.path(), gone) == file) {
            const int descriptor = std::stoi(entry.path().filename());
            std::printf("%s%s", (fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0 ? " close-on-exec" : "",
                        (fcntl(descriptor, F_GETFL) & O_APPEND) != 0 ? " append" : "");
        }
    }
}

void logBeforeAndAfterRotation() {
    log("before");
    std::filesystem::resize_file(std::getenv("TEV_LOG_FILE"), 0);
    log("after");
}

void logManyFromManyThreads() {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([thread] {
            for (int i = 0; i < 100; ++i) {
                // Longer than what a pipe takes in one piece.
                log(std::to_string(thread) + ' ' + std::to_string(i) + ' ' + std::string(10000, 'x'));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

void logLong() {
    log(std::string(1000000, 'x') + "end");
}

/// Interrupts the writing of a long record; at the hundredth time, says so on standard output.
void logLongWhileInterrupted() {
    struct sigaction action {};
    action.sa_handler = [](int /*signal*/) {
        static volatile std::sig_atomic_t count = 0;
        count = count + 1;
        if (count == 100) {
            static_cast<void>(!write(STDOUT_FILENO, "!", 1));
        }
    };
    sigaction(SIGALRM, &action, nullptr);
    const itimerval everyMillisecond{{0, 1000}, {0, 1000}};
    setitimer(ITIMER_REAL, &everyMillisecond, nullptr);
    logLong();
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
}

void limitFileSize(rlim_t size) {
    const rlimit limit{size, RLIM_INFINITY};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) {
        throw std::runtime_error("no file size limit");
    }
}

/// Logs while the file cannot grow, then when it can again.
void logWhileTheDiskIsFull() {
    std::signal(SIGXFSZ, SIG_IGN);
    log("first");
    limitFileSize(1000);
    log("second" + std::string(2000, 'x'));
    log("third");
    limitFileSize(RLIM_INFINITY);
    log("fourth");
    limitFileSize(std::filesystem::file_size(std::getenv("TEV_LOG_FILE")));
    log("fifth");
    limitFileSize(RLIM_INFINITY);
    log("sixth");
}

void logWithoutMemory() {
    log("first");
    setShortage({0, std::numeric_limits<int>::max()});
    log(std::string(100000, 'x'));
    for (std::size_t plain = 0; plain < 4; ++plain) {
        std::string text(plain, '-');
        while (text.size() < 100000) {
            text +=
                "\x01\x01"
                "a";
        }
        log(text);
    }
    log("short");
    setShortage({});
    log(std::string(100000, 'z'));
}

/// Has memory for the text, at first none for the line, then memory again.
void logWhileMemoryComesBack() {
    setShortage({1, 3});
    log(std::string(3000, 'x') + "\n" + std::string(3000, 'y'));
}

/// Made before the log is, hence destroyed after it would be.
class LogAtExit {
public:
    ~LogAtExit() {
        if (armed) {
            log("from a destructor");
        }
    }
    bool armed = false;
} logAtExit;

void logWithSigpipeAsByDefault() {
    std::signal(SIGPIPE, SIG_DFL);
    sigset_t sigpipe;
    sigemptyset(&sigpipe);
    sigaddset(&sigpipe, SIGPIPE);
    pthread_sigmask(SIG_UNBLOCK, &sigpipe, nullptr);
    log("record");
}

void logFromDestructor() {
    log("from main");
    logAtExit.armed = true;
}

}  // namespace

int main(int argumentCount, char* arguments[]) {
    const std::map<std::string, void (*)()> actions{
        {"level", printLevel},
        {"once", logOnce},
        {"show-file", showFile},
        {"rotation", logBeforeAndAfterRotation},
        {"threads", logManyFromManyThreads},
        {"long", logLong},
        {"interrupted", logLongWhileInterrupted},
        {"full-disk", logWhileTheDiskIsFull},
        {"no-memory", logWithoutMemory},
        {"memory-back", logWhileMemoryComesBack},
        {"sigpipe", logWithSigpipeAsByDefault},
        {"destructor", logFromDestructor},
    };
    const auto action = actions.find(argumentCount > 1 ? arguments[1] : "");
    if (action == actions.end()) {
        std::fprintf(stderr, "usage: %s ACTION\n", arguments[0]);
        return 2;
    }
    action->second();
    return 0;
}
