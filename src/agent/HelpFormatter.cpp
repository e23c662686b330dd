#include "HelpFormatter.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "Screen.h"

namespace TevAgent {

namespace {

constexpr std::size_t usualColumn = 28;  // of the descriptions

/// `text` in lines of so many columns, where its words allow it.
std::string wrapped(const std::string& text, std::size_t room) {
    std::istringstream words(text);
    std::string lines;
    std::size_t length = 0;
    for (std::string word; words >> word;) {
        if (length > 0) {
            const bool fits = length + 1 + word.size() <= room;
            lines += fits ? " " : "\n";
            length = fits ? length + 1 : 0;
        }
        lines += word;
        length += word.size();
    }
    return lines;
}

}  // namespace

HelpFormatter::HelpFormatter(std::size_t screenWidth) : width(screenWidth) {
    column_width(std::min(usualColumn, width * usualColumn / Screen::usualWidth));
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
    return wrapped(option->get_description(), width - column_width_);
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const {
    std::ostringstream line;
    CLI::detail::format_help(line, command->get_display_name(true),
                             wrapped(command->get_description(), width - column_width_), column_width_);
    return line.str();
}

std::string HelpFormatter::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const {
    std::istringstream lines(Formatter::make_help(app, std::move(name), mode));
    std::string help;
    std::string gap;
    // Each part brings empty lines of its own around it.
    for (std::string line; std::getline(lines, line);) {
        if (line.empty()) {
            gap = "\n";
        } else {
            // What is indented is a row of a table, or an example.
            help += (help.empty() ? "" : gap) + (line.front() == ' ' ? line : wrapped(line, width)) + "\n";
            gap.clear();
        }
    }
    return help;
}

}  // namespace TevAgent
