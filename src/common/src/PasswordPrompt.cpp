#include "PasswordPrompt.h"

namespace Tev {

void PasswordPrompt::read(std::string_view bytes) {
    for (const char character : bytes) {
        const bool isBreak = character == '\r' || character == '\n';
        // The client confirms the answer with a newline, and begins each question with a carriage return.
        isSecond = isSecond || (isAnswered && last == '\n' && character == '\r');
        if (isSecond && !isBreak) {
            second += character;
        }
        last = character;
    }
}

bool PasswordPrompt::takeQuestion() {
    // A lone carriage return comes before the client is ready, and a line's end before a further line.
    if (isAnswered || last == '\r' || last == '\n') {
        return false;
    }
    isAnswered = true;
    return true;
}

}  // namespace Tev
