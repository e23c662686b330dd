#ifndef TEV_PASSWORD_PROMPT_H
#define TEV_PASSWORD_PROMPT_H

#include <string>
#include <string_view>

namespace Tev {

/// What the client asks on its terminal: one question gets the password, a second one gets nothing.
class PasswordPrompt {
public:
    /// Takes what the client has written.
    void read(std::string_view bytes);

    /// To be called when there is nothing more to read. Returns true once, when the question stands there, of one line
    /// or several: the client has by then thrown away what was typed before, and waits.
    bool takeQuestion();

    /// What the client asks after the answer, as far as it was read; empty while it asks nothing.
    const std::string& secondQuestion() const { return second; }

private:
    bool isAnswered = false;
    bool isSecond = false;  // the question that is being read
    char last = '\r';
    std::string second;
};

}  // namespace Tev

#endif
