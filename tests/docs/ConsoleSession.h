#ifndef CONSOLE_SESSION_H
#define CONSOLE_SESSION_H

#include <string>
#include <vector>

#include "TempFolder.h"

namespace TevTest {

/// A reader who types the `console` blocks of a page, one after the other, into one shell.
///
/// A line that begins with "$ " is a command; where it ends in a backslash, the next line belongs to it. What follows
/// is what the command writes, to standard output or error; "…" stands for anything in a line, and alone on a line for
/// any lines. Blank lines before a command and at a block's end mean nothing. A command has to succeed unless the next
/// one is `echo $?`.
///
/// The reader is in a folder of his own with `examples`, `scripts` and what this build has made as `build/release`, has
/// its programs in the search path, and a home and a state folder of his own.
class ConsoleSession {
public:
    ConsoleSession();

    /// Types the blocks of a page. Returns what was otherwise than the page tells, one text for each command.
    std::vector<std::string> differencesFrom(const std::string& page) const;

private:
    TempFolder world;
    TempFolder notes;
};

}  // namespace TevTest

#endif
