#include "PasswordPrompt.h"

namespace Tev {

bool PasswordPrompt::read(std::string_view bytes) {
    // A lone carriage return comes before the client is ready.
    bool isQuestion = false;
    for (const char character : bytes) {
        const bool isBreak = character == '\r' || character == '\n';
        if (!isAnswered && !isBreak) {
            isAnswered = true;
            isQuestion = true;
        } else if (isAnswered && character == '\n') {
            isLineOver = true;
        } else if (isLineOver && !isBreak) {
            second += character;
        }
    }
    return isQuestion;
}

}  // namespace Tev
