#ifndef TEV_AGENT_COMMAND_LINE_H
#define TEV_AGENT_COMMAND_LINE_H

#include <map>
#include <string>
#include <vector>

#include "Screen.h"
#include "Settings.h"

namespace TevAgent {

/// The program's arguments, and the lines of its shell.
class CommandLine {
public:
    /// Takes the arguments of `main` apart. What is shown of the usage fits `screen`, and 80 columns where that has no
    /// width. Throws `Failure` (wrong usage) with what is wrong.
    static Settings parse(int argumentCount, const char* const* arguments, const Screen& screen = {});

    /// Takes the words of a line apart that a shell with the settings `session` was given. `screen` and what is
    /// thrown as for `parse`.
    static Settings parseLine(const std::vector<std::string>& words, const Settings& session,
                              const Screen& screen = {});

    /// The names of the commands that a line may begin with.
    static std::vector<std::string> lineCommands();

    /// The options that may stand behind a command on a line, and whether a value follows each; none for a word that is
    /// no command.
    static std::map<std::string, bool> lineOptions(const std::string& command);
};

}  // namespace TevAgent

#endif
