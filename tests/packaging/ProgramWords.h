#ifndef PROGRAM_WORDS_H
#define PROGRAM_WORDS_H

#include <set>
#include <string>

namespace TevTest {

/// What the program's help tells.
struct ProgramWords {
    /// The commands.
    static std::set<std::string> commands();

    /// The long options of a command, with their hyphens; with "" those of the program.
    static std::set<std::string> options(const std::string& command);
};

}  // namespace TevTest

#endif
