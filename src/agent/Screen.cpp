#include "Screen.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>

namespace TevAgent {

namespace {

std::string_view variable(const char* name) {
    const char* const value = getenv(name);
    return value == nullptr ? "" : value;
}

/// What COLUMNS says; 0 when that is no number.
std::size_t wantedColumns() {
    const std::string_view text = variable("COLUMNS");
    std::size_t columns = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), columns);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() ? columns : 0;
}

}  // namespace

Screen Screen::of(int descriptor) {
    if (isatty(descriptor) != 1) {
        return {};
    }
    const std::size_t wanted = wantedColumns();
    const std::string_view type = variable("TERM");
    const bool isPlain = type.empty() || type == "dumb" || !variable("NO_COLOR").empty();
    return {wanted == 0 ? columnsOf(descriptor) : wanted, !isPlain};
}

std::size_t Screen::columnsOf(int descriptor) {
    winsize size{};
    const bool isKnown = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
    return isKnown ? size.ws_col : usualWidth;
}

std::string Screen::emphasised(Emphasis emphasis, std::string_view text) const {
    if (!hasColours) {
        return std::string(text);
    }
    const char* const begin = emphasis == Emphasis::Title  ? "\x1b[1m"    // bold
                              : emphasis == Emphasis::Good ? "\x1b[32m"   // green
                                                           : "\x1b[31m";  // red
    return begin + std::string(text) + "\x1b[0m";
}

}  // namespace TevAgent
