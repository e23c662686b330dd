#ifndef TEV_PASSWORD_PROMPT_H
#define TEV_PASSWORD_PROMPT_H

#include <string>
#include <string_view>

namespace Tev {

/// What the client asks on its terminal: one question gets the password, a second one gets nothing.
class PasswordPrompt {
public:
    /// Takes what the client has written. Returns true once, when the question stands there: the client has by then
    /// thrown away what was typed before, and waits.
    bool read(std::string_view bytes);

    /// What the client asks after the answer, as far as it was read; empty while it asks nothing.
    const std::string& secondQuestion() const { return second; }

private:
    bool isAnswered = false;
    bool isLineOver = false;  // the newline with which the client confirms the answer has come
    std::string second;
};

}  // namespace Tev

#endif
