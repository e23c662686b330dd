#include "LiveLine.h"

#include <unistd.h>

#include "Descriptor.h"
#include "Screen.h"
#include "Text.h"
#include "Utf8.h"

namespace TevAgent {

namespace {

/// `text` without what goes beyond the terminal's last column but one: at the last one some begin a new line.
std::string fitted(const std::string& text) {
    const std::size_t width = Screen::columnsOf(STDERR_FILENO) - 1;
    return std::string(Utf8::fitted(Text::escaped(text), width));
}

}  // namespace

LiveLine::LiveLine() : isTerminal(isatty(STDERR_FILENO) == 1) {}

LiveLine::~LiveLine() {
    clear();
}

void LiveLine::show(const std::string& text) {
    if (isTerminal && text != shown) {
        clear();
        shown = text;
        Descriptor::write(STDERR_FILENO, fitted(text));
    }
}

void LiveLine::clear() {
    if (!shown.empty()) {
        Descriptor::write(STDERR_FILENO, "\r\x1b[K");
        shown.clear();
    }
}

}  // namespace TevAgent
