#ifndef TEV_PSEUDO_TERMINAL_H
#define TEV_PSEUDO_TERMINAL_H

#include <string>

#include "FileDescriptor.h"

namespace Tev {

/// A terminal that a child process may have as its own, to be asked for a password on it. It is raw, so every byte goes
/// through as it is. When it closes, its session gets SIGHUP.
class PseudoTerminal {
public:
    /// Throws std::system_error when the system has none left.
    PseudoTerminal();

    /// The path at which the child opens its side.
    const std::string& childPath() const { return path; }

    /// This side; reads and writes do not block.
    const FileDescriptor& descriptor() const { return master; }

private:
    FileDescriptor master;
    std::string path;
};

}  // namespace Tev

#endif
