#include "LogLine.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <new>

#include "ControlCharacter.h"

namespace Tev {

namespace {

constexpr std::size_t longestEscape = 4;

/// Writes the escape of a control character to `out` and returns its length.
std::size_t escape(char character, char* out) {
    constexpr std::string_view shortOnes = "\nn\rr\tt";
    constexpr std::string_view digits = "0123456789abcdef";
    *out++ = '\\';
    for (std::size_t i = 0; i < shortOnes.size(); i += 2) {
        if (character == shortOnes[i]) {
            *out = shortOnes[i + 1];
            return 2;
        }
    }
    const auto byte = static_cast<unsigned char>(character);
    *out++ = 'x';
    *out++ = digits[byte >> 4U];
    *out = digits[byte & 0xfU];
    return longestEscape;
}

}  // namespace

LogLine::LogLine() noexcept : callerErrno(errno) {
    appendTime();
    append(" ").append(gettid()).append(" ");
}

LogLine::~LogLine() {
    if (data != stack) {
        delete[] data;
    }
    errno = callerErrno;
}

void LogLine::appendTime() noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm utc{};
    gmtime_r(&now.tv_sec, &utc);
    char text[96];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%06ldZ", utc.tm_year + 1900, utc.tm_mon + 1,
                  utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, now.tv_nsec / 1000);
    appendRaw(text);
}

LogLine& LogLine::append(int number) noexcept {
    char text[16];
    const auto result = std::to_chars(text, text + sizeof text, number);
    appendRaw({text, static_cast<std::size_t>(result.ptr - text)});
    return *this;
}

LogLine& LogLine::append(std::string_view text) noexcept {
    reserve(text.size());  // at once; when that fails, what fits is seen below
    while (!text.empty()) {
        const auto* const control = std::find_if(text.begin(), text.end(), isControl);
        const auto length = static_cast<std::size_t>(control - text.begin());
        appendRaw(text.substr(0, length));
        text.remove_prefix(length);
        if (!text.empty()) {
            appendEscape(text.front());
            text.remove_prefix(1);
        }
    }
    return *this;
}

void LogLine::appendEscape(char character) noexcept {
    char text[longestEscape];
    const std::size_t length = escape(character, text);
    if (reserve(length)) {
        appendRaw({text, length});
    } else {
        cut = true;
    }
}

void LogLine::appendRaw(std::string_view text) noexcept {
    if (!cut) {
        cut = !reserve(text.size());
        const std::size_t fitting = std::min(text.size(), room());
        std::memcpy(data + size, text.data(), fitting);
        size += fitting;
    }
}

bool LogLine::reserve(std::size_t length) noexcept {
    if (length <= room()) {
        return true;
    }
    const std::size_t wanted = std::max(capacity * 2, size + length + 1);
    char* const bigger = new (std::nothrow) char[wanted];
    if (bigger == nullptr) {
        return false;
    }
    std::memcpy(bigger, data, size);
    if (data != stack) {
        delete[] data;
    }
    data = bigger;
    capacity = wanted;
    return true;
}

void LogLine::appendFormatted(const char* format, va_list arguments) noexcept {
    char shortText[1024];
    va_list again;
    va_copy(again, arguments);
    errno = callerErrno;
    const int result = std::vsnprintf(shortText, sizeof shortText, format, again);
    va_end(again);
    if (result < 0) {
        append(format);
        return;
    }
    const auto length = static_cast<std::size_t>(result);
    if (length < sizeof shortText) {
        append({shortText, length});
        return;
    }
    const std::unique_ptr<char[]> longText(new (std::nothrow) char[length + 1]);
    if (longText == nullptr) {
        append({shortText, sizeof shortText - 1});
        return;
    }
    errno = callerErrno;
    std::vsnprintf(longText.get(), length + 1, format, arguments);
    append({longText.get(), length});
}

std::string_view LogLine::finish() noexcept {
    data[size++] = '\n';
    return {data, size};
}

}  // namespace Tev
