#ifndef TEV_AGENT_FILE_ERROR_H
#define TEV_AGENT_FILE_ERROR_H

#include <stdexcept>
#include <string>

namespace TevAgent {

/// Thrown by what reads a file without knowing its name: what is wrong with it, and where.
class FileError : public std::runtime_error {
public:
    FileError(unsigned long lineNumber, const std::string& reason) : std::runtime_error(reason), number(lineNumber) {}

    /// Counted from 1; 0 when the error has no line.
    unsigned long line() const noexcept { return number; }

private:
    unsigned long number;
};

}  // namespace TevAgent

#endif
