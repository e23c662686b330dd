#include "ScriptReader.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "Failure.h"
#include "Interruption.h"

namespace TevAgent {

std::optional<LineSource::Line> ScriptReader::next() {
    Line line;
    char byte = '\0';
    ssize_t count = Interruption::readByte(STDIN_FILENO, byte);
    if (count == 0) {
        return std::nullopt;
    }
    for (; count == 1 && byte != '\n'; count = Interruption::readByte(STDIN_FILENO, byte)) {
        if (byte == '\0') {
            line.fault = "the line holds a null byte";
        } else if (line.text.size() < maxBytes + 2) {  // one too many is seen also where a carriage return goes
            line.text += byte;
        }
    }
    if (count == -1) {
        throw Failure(ExitStatus::NotStarted, "cannot read standard input: " + std::generic_category().message(errno));
    }
    if (!line.text.empty() && line.text.back() == '\r') {
        line.text.pop_back();
    }
    if (line.text.size() > maxBytes) {
        line.fault = "the line is longer than " + std::to_string(maxBytes) + " bytes";
    }
    return line;
}

}  // namespace TevAgent
