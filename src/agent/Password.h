#ifndef TEV_AGENT_PASSWORD_H
#define TEV_AGENT_PASSWORD_H

#include <array>
#include <cstddef>
#include <string>

namespace TevAgent {

/// A password: one line of text without its newline. It lies in this object alone, and is wiped when the object goes.
class Password {
public:
    static constexpr std::size_t maxBytes = 1023;  ///< no SSH client takes more

    /// Asks the operator for that of `account`, which is shown as it is and may be empty, on the controlling terminal,
    /// without echo; of the keys that send signals only the interrupt key does then, the others are part of the
    /// password. Throws `Failure` (wrong usage) when there is no terminal.
    static Password ask(const std::string& account);

    /// Reads the first line of standard input.
    static Password fromInput();

    /// Reads the first line of a file; of a named pipe, once somebody writes it. Throws `Failure` (not started) when it
    /// cannot be read.
    static Password fromFile(const std::string& file);

    ~Password();
    Password(const Password&) = delete;
    Password& operator=(const Password&) = delete;

    const char* text() const { return line.data(); }

private:
    /// Reads the line, byte by byte, so that nothing behind it is taken. `source` names where it comes from. Throws
    /// `Failure` (wrong usage) when there is none, it is too long or holds a null byte; `Interrupted`.
    Password(int descriptor, const std::string& source);

    void read(int descriptor, const std::string& source);

    std::array<char, maxBytes + 1> line{};
};

}  // namespace TevAgent

#endif
