#ifndef COMMAND_OUTPUT_H
#define COMMAND_OUTPUT_H

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace TevTest {

/// What a shell command that has to succeed writes to standard output.
inline std::string outputOf(const std::string& command) {
    FILE* const output = popen(command.c_str(), "r");
    if (output == nullptr) {
        throw std::runtime_error("cannot run " + command);
    }
    std::string text;
    std::array<char, 4096> piece{};
    for (std::size_t length = 1; length > 0;) {
        length = std::fread(piece.data(), 1, piece.size(), output);
        text.append(piece.data(), length);
    }
    if (const int status = pclose(output); !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error("failed: " + command);
    }
    return text;
}

}  // namespace TevTest

#endif
