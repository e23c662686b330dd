#include "Utf8.h"

#include <unistr.h>
#include <uniwidth.h>

#include <cstdint>

namespace TevAgent {

namespace {

constexpr char32_t replacement = 0xfffd;

/// Takes the first character off `text`, which is not empty, and returns its width in columns.
std::size_t takeWidth(std::string_view& text) {
    const char32_t code = Utf8::takeFirst(text);
    const bool isAscii = code < 0x80;  // nearly all are like that
    const int width = isAscii ? 1 : uc_width(code, "UTF-8");
    return width < 0 ? 1 : static_cast<std::size_t>(width);
}

}  // namespace

char32_t Utf8::takeFirst(std::string_view& text) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    ucs4_t code = 0;
    const int size = u8_mbtoucr(&code, bytes, text.size());
    text.remove_prefix(size > 0 ? static_cast<std::size_t>(size) : 1);
    return size > 0 ? code : replacement;
}

std::string Utf8::repaired(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::string_view before = text;
        const bool isReplaced = takeFirst(text) == replacement;
        result += isReplaced ? "\xef\xbf\xbd" : before.substr(0, before.size() - text.size());
    }
    return result;
}

std::size_t Utf8::columns(std::string_view text) {
    std::size_t sum = 0;
    while (!text.empty()) {
        sum += takeWidth(text);
    }
    return sum;
}

std::string_view Utf8::fitted(std::string_view text, std::size_t columns) {
    std::string_view rest = text;
    std::size_t fitting = 0;
    std::size_t sum = 0;
    while (!rest.empty() && (sum += takeWidth(rest)) <= columns) {
        fitting = text.size() - rest.size();
    }
    return text.substr(0, fitting);
}

}  // namespace TevAgent
