#ifndef TEV_AGENT_SHELL_HISTORY_H
#define TEV_AGENT_SHELL_HISTORY_H

#include <cstddef>
#include <string>
#include <vector>

namespace TevAgent {

/// The lines that operators typed, kept in the file `history` of the state folder, one a line, for its owner only. A
/// line is written at once, so that shells which run side by side, or end early, lose none; but one that is added while
/// another shell begins, and shortens the file, may be lost. A file that cannot be read or written is said once, and no
/// failure. Used by one thread.
class ShellHistory {
public:
    static constexpr std::size_t maxLines = 1000;  ///< kept when a shell begins

    /// Reads the file.
    ShellHistory();

    /// The last lines of the file when it was read, the oldest first.
    const std::vector<std::string>& lines() const { return last; }

    /// Whether a line is one to keep: neither blank, nor begun with a blank, nor with a control character, nor with
    /// what may be a password in a URI.
    static bool isKept(const std::string& line);

    /// Adds a line, at the file's end.
    void add(const std::string& line);

private:
    void read();
    void shorten();

    /// Says, the first time, that the file cannot be used.
    void giveUp(const std::string& reason);

    std::string file;  ///< empty when there is none
    std::vector<std::string> last;
};

}  // namespace TevAgent

#endif
