#ifndef TEV_AGENT_STANDARD_OUTPUT_H
#define TEV_AGENT_STANDARD_OUTPUT_H

#include <string_view>

#include "Screen.h"

namespace TevAgent {

/// The way results leave the program, and nothing else does: once this object is made, whatever is written to
/// descriptor 1 goes to standard error, for as long as the process lives. The real standard output is a private
/// descriptor, which no other program inherits.
///
/// Made before anything is written and before other threads are there; used by one thread. SIGPIPE is ignored from
/// then on, so that a reader who has gone away ends no command that has more to do than to tell of it.
class StandardOutput {
public:
    /// Standard descriptors that are closed are opened onto /dev/null, so that no file takes their place.
    StandardOutput();
    ~StandardOutput();
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    /// Where results are shown, as it is just now.
    Screen screen() const { return Screen::of(descriptor); }

    /// Writes all of `text` at once. Throws `Failure` (operation failed) with the reason; (reader gone) where it is
    /// that nobody reads any more.
    void write(std::string_view text);

    /// The descriptor that is written to, for a program that is given it as its standard output; -1 when there is none.
    int get() const { return descriptor; }

    /// Ends the output. Throws `Failure` (operation failed) when the system tells only now that something was lost.
    void close();

private:
    int descriptor;  ///< -1 once it is closed, or when standard output was closed from the beginning
};

}  // namespace TevAgent

#endif
