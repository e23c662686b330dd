#include "TevException.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string>

namespace Tev {

namespace {

__attribute__((format(printf, 1, 0))) std::string formatText(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length < 0) {
        return format;  // an argument that cannot be converted; the format still tells what went wrong
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

}  // namespace

TevException::TevException(TevReturnT code, const char* format, ...) : returnCode(code), text("") {
    va_list arguments;
    va_start(arguments, format);
    text = std::runtime_error(formatText(format, arguments));
    va_end(arguments);
}

TevException::TevException(const char* format, ...) : returnCode(TevReturnFailure), text("") {
    va_list arguments;
    va_start(arguments, format);
    text = std::runtime_error(formatText(format, arguments));
    va_end(arguments);
}

TevException::~TevException() = default;

const char* TevException::what() const noexcept {
    return text.what();
}

TevReturnT TevException::getReturnCode() const noexcept {
    return returnCode;
}

}  // namespace Tev
