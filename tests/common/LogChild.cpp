#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
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

std::atomic<bool> memoryGone{false};

}  // namespace

// The log takes its memory from here. Only large pieces run out, as large ones do first.
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return memoryGone && size > 4096 ? nullptr : std::malloc(size);
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
    memoryGone = true;
    log(std::string(100000, 'x'));
    for (std::size_t plain = 0; plain < 4; ++plain) {
        std::string text(plain, '-');
        while (text.size() < 100000) {
            text +=
                "\x01"
                "abc";
        }
        log(text);
    }
    log("short");
    memoryGone = false;
    log(std::string(100000, 'z'));
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
