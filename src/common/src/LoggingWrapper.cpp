#include "LoggingWrapper.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include "AnnotatedMutex.h"
#include "LogLine.h"
#include "SigpipeGuard.h"

namespace Tev {

namespace Trace {
const TraceSubsystem Schema{"Schema"};
const TraceSubsystem Common{"Common"};
}  // namespace Trace

namespace {

constexpr char levelVariable[] = "TEV_LOG_LEVEL";
constexpr char fileVariable[] = "TEV_LOG_FILE";

/// Writes `text` whole unless that fails, and returns how much was written.
std::size_t writeAll(int descriptor, std::string_view text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t result = write(descriptor, text.data() + written, text.size() - written);
        if (result >= 0) {
            written += static_cast<std::size_t>(result);
        } else if (errno == EAGAIN) {
            pollfd waited{descriptor, POLLOUT, 0};
            poll(&waited, 1, -1);
        } else if (errno != EINTR) {
            break;
        }
    }
    return written;
}

bool parseLevel(std::string_view text, int& level) {
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || value < 0 || value > LoggingWrapper::maxLevel) {
        return false;
    }
    level = value;
    return true;
}

}  // namespace

struct LoggingWrapper::State {
    State() {
        const int callerErrno = errno;
        openFile();
        readLevel();
        errno = callerErrno;
    }

    void openFile() {
        const char* const path = std::getenv(fileVariable);
        if (path == nullptr) {
            return;
        }
        // A pipe without a reader is refused; waiting for one would hold up the whole process.
        const int opened = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0640);
        if (opened >= 0) {
            descriptor = opened;
        } else {
            complain("%s is '%s', which cannot be opened: %s; standard error takes its place", fileVariable, path,
                     std::generic_category().message(errno).c_str());
        }
    }

    void readLevel() {
        const char* const text = std::getenv(levelVariable);
        int wanted = defaultLevel;
        if (text != nullptr && !parseLevel(text, wanted)) {
            complain("%s is '%s', which is not a whole number from 0 to %d; level %d is used", levelVariable, text,
                     maxLevel, defaultLevel);
        }
        level.store(wanted, std::memory_order_relaxed);
    }

    /// Writes a record whatever the level is.
    __attribute__((format(printf, 2, 3))) void complain(const char* format, ...) {
        LogLine line;
        line.append("LOG ").append(3).append(" LoggingWrapper: ");
        va_list arguments;
        va_start(arguments, format);
        line.appendFormatted(format, arguments);
        va_end(arguments);
        write(line.finish());
    }

    void write(std::string_view line) {
        // A reader of the log that goes away is no reason for the host to go too.
        const SigpipeGuard guard;
        const AnnotatedLock lock(mutex);
        if (torn && writeAll(descriptor, "\n") == 0) {
            return;
        }
        const std::size_t written = writeAll(descriptor, line);
        torn = written > 0 && written < line.size();
    }

    std::atomic<int> level{defaultLevel};
    int descriptor = STDERR_FILENO;  // set once, before the log is known to others
    AnnotatedMutex mutex;
    bool torn TEV_GUARDED_BY(mutex) = false;  // the last line could not be written whole
};

LoggingWrapper& LoggingWrapper::instance() {
    static LoggingWrapper* const log = new LoggingWrapper;
    return *log;
}

LoggingWrapper::LoggingWrapper() : state(std::make_unique<State>()) {}

LoggingWrapper::~LoggingWrapper() = default;

int LoggingWrapper::get_level() const noexcept {
    return state->level.load(std::memory_order_relaxed);
}

void LoggingWrapper::set_level(int level) noexcept {
    state->level.store(std::clamp(level, 0, maxLevel), std::memory_order_relaxed);
}

void LoggingWrapper::log_printf(const char* functionName, int level, int /*category*/, const char* format,
                                ...) noexcept {
    if (get_level() < level) {
        return;
    }
    LogLine line;
    line.append("LOG ").append(level).append(" ").append(functionName).append(": ");
    va_list arguments;
    va_start(arguments, format);
    line.appendFormatted(format, arguments);
    va_end(arguments);
    state->write(line.finish());
}

void LoggingWrapper::trace_printf(const char* sourceFile, const char* functionName, int line, int kind,
                                  const char* format, ...) noexcept {
    if (get_level() < maxLevel) {
        return;
    }
    LogLine record;
    record.append("DEBUG ").append(kind).append(" ").append(sourceFile).append(":").append(line).append(" ");
    record.append(functionName).append(": ");
    va_list arguments;
    va_start(arguments, format);
    record.appendFormatted(format, arguments);
    va_end(arguments);
    state->write(record.finish());
}

void LoggingWrapper::trace_v2_printf(const TraceSubsystem& subsystem, int level, const char* sourceFile,
                                     const char* functionName, int line, const char* format, ...) noexcept {
    if (get_level() < std::min(level, maxLevel)) {
        return;
    }
    LogLine record;
    record.append("TRACE ").append(subsystem.name).append(" ").append(level).append(" ");
    record.append(sourceFile).append(":").append(line).append(" ").append(functionName).append(": ");
    va_list arguments;
    va_start(arguments, format);
    record.appendFormatted(format, arguments);
    va_end(arguments);
    state->write(record.finish());
}

}  // namespace Tev
