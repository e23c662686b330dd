#ifndef TEV_LOG_LINE_H
#define TEV_LOG_LINE_H

#include <cstdarg>
#include <cstddef>
#include <string_view>

namespace Tev {

/// One line of the log being put together: on the stack while it is short, on the heap when it is long. When memory
/// runs out, the line keeps what fits.
///
/// A control character in what is appended becomes an escape. Nothing throws. `errno` is the caller's again when the
/// line goes.
class LogLine {
public:
    /// Begins the line with the time (UTC) and the calling thread's id.
    LogLine() noexcept;
    ~LogLine();
    LogLine(const LogLine&) = delete;
    LogLine& operator=(const LogLine&) = delete;

    LogLine& append(std::string_view text) noexcept;
    LogLine& append(int number) noexcept;

    /// Appends what `format` and `arguments` make, as for `vprintf`; the format itself when they make nothing. A `%m`
    /// tells the caller's `errno`.
    void appendFormatted(const char* format, va_list arguments) noexcept __attribute__((format(printf, 2, 0)));

    /// Ends the line. The text, with its newline, is owned by this object. To be called once, at the end.
    std::string_view finish() noexcept;

private:
    static constexpr std::size_t stackSize = 2048;

    void appendTime() noexcept;
    void appendEscape(char character) noexcept;
    void appendRaw(std::string_view text) noexcept;
    bool reserve(std::size_t length) noexcept;
    std::size_t room() const noexcept { return capacity - size - 1; }  // one byte is the newline's

    const int callerErrno;
    char stack[stackSize];
    char* data = stack;
    std::size_t capacity = stackSize;
    std::size_t size = 0;
    bool cut = false;  // something was left out, so nothing may follow
};

}  // namespace Tev

#endif
