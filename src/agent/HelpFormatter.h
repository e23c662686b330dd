#ifndef TEV_AGENT_HELP_FORMATTER_H
#define TEV_AGENT_HELP_FORMATTER_H

#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>

namespace TevAgent {

/// The help of the command line, in lines that fit a screen where their words do; examples are never broken.
class HelpFormatter : public CLI::Formatter {
public:
    /// `screenWidth` is in columns.
    explicit HelpFormatter(std::size_t screenWidth);

    std::string make_option_desc(const CLI::Option* option) const override;
    std::string make_subcommand(const CLI::App* command) const override;
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;

private:
    const std::size_t width;
};

}  // namespace TevAgent

#endif
