#include "Utf8.h"

#include <Poco/UTF8Encoding.h>
#include <locale.h>
#include <wchar.h>

#include <algorithm>

namespace TevAgent {

namespace {

/// The length in bytes of the well-formed character that `text`, which is not empty, begins with, or 0.
std::size_t characterSize(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    if (*bytes < 0x80) {
        return 1;  // nearly all are like that
    }
    const int size = Poco::UTF8Encoding().sequenceLength(bytes, 1);
    const bool isWhole = static_cast<std::size_t>(size) <= text.size();
    return isWhole && Poco::UTF8Encoding::isLegal(bytes, size) ? static_cast<std::size_t>(size) : 0;
}

/// Knows the widths of characters as long as it lives: in its thread, for the process keeps its locale.
class Widths {
public:
    Widths() : before(uselocale(unicode())) {}
    ~Widths() { uselocale(before); }
    Widths(const Widths&) = delete;
    Widths& operator=(const Widths&) = delete;

    /// Takes the first character off `text`, which is not empty, and returns its width in columns.
    std::size_t takeFirst(std::string_view& text) const {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
        const std::size_t size = std::max<std::size_t>(characterSize(text), 1);
        const int code = Poco::UTF8Encoding().queryConvert(bytes, static_cast<int>(size));
        text.remove_prefix(size);
        const int width = wcwidth(static_cast<wchar_t>(code));
        return width < 0 ? 1 : static_cast<std::size_t>(width);
    }

private:
    /// Null, which changes nothing, on a system without it; all characters have one column then.
    static locale_t unicode() {
        static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return locale;
    }

    const locale_t before;
};

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

std::size_t Utf8::columns(std::string_view text) {
    const Widths widths;
    std::size_t sum = 0;
    while (!text.empty()) {
        sum += widths.takeFirst(text);
    }
    return sum;
}

std::string_view Utf8::fitted(std::string_view text, std::size_t columns) {
    const Widths widths;
    std::string_view rest = text;
    std::size_t fitting = 0;
    std::size_t sum = 0;
    while (!rest.empty() && (sum += widths.takeFirst(rest)) <= columns) {
        fitting = text.size() - rest.size();
    }
    return text.substr(0, fitting);
}

}  // namespace TevAgent
