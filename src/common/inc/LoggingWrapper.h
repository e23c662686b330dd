#ifndef TEV_LOGGING_WRAPPER_H
#define TEV_LOGGING_WRAPPER_H

#include <memory>

#include "TevCommonApi.h"

namespace Tev {

/// Tells whose trace records are whose; see `Tev::Trace`.
struct TraceSubsystem {
    const char* name;
};

namespace Trace {
extern TEV_COMMON_API const TraceSubsystem Schema;
extern TEV_COMMON_API const TraceSubsystem Common;
}  // namespace Trace

/// The process's log: one line per record, to the file that `TEV_LOG_FILE` names when the log is first used, else to
/// standard error. The file is appended to; when it cannot be opened, standard error says so and takes its place. What
/// cannot be written is dropped; a slow reader is waited for.
///
///     2026-11-20T23:56:01.123456Z <thread id> LOG <level> <function>: <text>
///     2026-11-20T23:56:01.123456Z <thread id> TRACE <subsystem> <level> <file>:<line> <function>: <text>
///     2026-11-20T23:56:01.123456Z <thread id> DEBUG <kind> <file>:<line> <function>: <text>
///
/// The time is UTC. A control character inside a text is written as an escape (`\n`, `\x1b`), so one record can never
/// pose as two.
///
/// Levels run from 0 (nothing) to 8 (debug traces too). Callers test `get_level()` before they call, so that
/// arguments of an unwanted record cost nothing; a record above the level is dropped here as well, before anything is
/// formatted.
///
/// Thread-safe. Lines are written whole; a thread's records stand in the order of its calls. No operation on it throws;
/// `errno` stays as it was.
class TEV_COMMON_API LoggingWrapper {
public:
    static constexpr int maxLevel = 8;
    static constexpr int defaultLevel = 4;

    /// The one log of the process. Its first level is that of `TEV_LOG_LEVEL` (0 to 8), else 4; the log says so when
    /// the variable holds anything else. It is never destroyed, so that every destructor may still write to it. Throws
    /// std::bad_alloc when memory runs out at its first use.
    static LoggingWrapper& instance();

    LoggingWrapper(const LoggingWrapper&) = delete;
    LoggingWrapper& operator=(const LoggingWrapper&) = delete;

    int get_level() const noexcept;

    /// Sets the level; a value outside 0 to 8 is brought to the nearer end.
    void set_level(int level) noexcept;

    /// Writes a LOG record if the level is at least `level`. `category` is not part of the record; callers pass 1.
    void log_printf(const char* functionName, int level, int category, const char* format, ...) noexcept
        __attribute__((format(printf, 5, 6)));

    /// Writes a DEBUG record if the level is 8. `kind` is 9 at a function's entry, 10 at its exit, 0 elsewhere.
    void trace_printf(const char* sourceFile, const char* functionName, int line, int kind, const char* format,
                      ...) noexcept __attribute__((format(printf, 6, 7)));

    /// Writes a TRACE record if the level is at least `level`; trace levels above 8 need level 8.
    void trace_v2_printf(const TraceSubsystem& subsystem, int level, const char* sourceFile, const char* functionName,
                         int line, const char* format, ...) noexcept __attribute__((format(printf, 7, 8)));

private:
    LoggingWrapper();
    ~LoggingWrapper();

    struct State;
    const std::unique_ptr<State> state;
};

}  // namespace Tev

#endif
