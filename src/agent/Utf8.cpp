#include "Utf8.h"

#include <Poco/UTF8Encoding.h>

#include <algorithm>

namespace TevAgent {

namespace {

/// The length in bytes of the well-formed character that `text`, which is not empty, begins with, or 0.
std::size_t characterSize(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    const int size = Poco::UTF8Encoding().sequenceLength(bytes, 1);
    const bool isWhole = static_cast<std::size_t>(size) <= text.size();
    return isWhole && Poco::UTF8Encoding::isLegal(bytes, size) ? static_cast<std::size_t>(size) : 0;
}

}  // namespace

std::string Utf8::repaired(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t size = characterSize(text);
        result += size == 0 ? "\xef\xbf\xbd" : text.substr(0, size);
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return result;
}

std::size_t Utf8::length(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U; }));
}

}  // namespace TevAgent
