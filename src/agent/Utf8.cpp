#include "Utf8.h"

#include <unistr.h>
#include <uniwidth.h>

#include <algorithm>
#include <cstdint>

namespace TevAgent {

namespace {

/// The length in bytes of the well-formed character that `text`, which is not empty, begins with, or 0. Its code is
/// U+FFFD then.
std::size_t characterSize(std::string_view text, ucs4_t& code) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const int size = u8_mbtoucr(&code, bytes, text.size());
    return size > 0 ? static_cast<std::size_t>(size) : 0;
}

/// Takes the first character off `text`, which is not empty, and returns its width in columns.
std::size_t takeFirst(std::string_view& text) {
    ucs4_t code = 0;
    text.remove_prefix(std::max<std::size_t>(characterSize(text, code), 1));
    const bool isAscii = code < 0x80;  // nearly all are like that
    const int width = isAscii ? 1 : uc_width(code, "UTF-8");
    return width < 0 ? 1 : static_cast<std::size_t>(width);
}

}  // namespace

std::string Utf8::repaired(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        ucs4_t code = 0;
        const std::size_t size = characterSize(text, code);
        result += size == 0 ? "\xef\xbf\xbd" : text.substr(0, size);
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return result;
}

std::size_t Utf8::columns(std::string_view text) {
    std::size_t sum = 0;
    while (!text.empty()) {
        sum += takeFirst(text);
    }
    return sum;
}

std::string_view Utf8::fitted(std::string_view text, std::size_t columns) {
    std::string_view rest = text;
    std::size_t fitting = 0;
    std::size_t sum = 0;
    while (!rest.empty() && (sum += takeFirst(rest)) <= columns) {
        fitting = text.size() - rest.size();
    }
    return text.substr(0, fitting);
}

}  // namespace TevAgent
