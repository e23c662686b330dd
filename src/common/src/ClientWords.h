#ifndef TEV_CLIENT_WORDS_H
#define TEV_CLIENT_WORDS_H

#include <string>
#include <string_view>
#include <vector>

namespace Tev {

/// What the client writes to standard error, line by line, without what it says in any case. Its steps, when it tells
/// them, go to the log at level 6.
class ClientWords {
public:
    explicit ClientWords(bool isTellingSteps) : isLogging(isTellingSteps) {}

    /// Takes a piece of the stream, cut anywhere.
    void add(std::string_view bytes);

    /// The lines since the last call, without control characters; they are forgotten here. An unfinished line counts.
    std::vector<std::string> take();

private:
    void endLine();

    bool isLogging;
    std::string line;
    std::vector<std::string> lines;
};

/// `text` with "?" for each control character, so that it can be shown on a terminal.
std::string printable(std::string_view text);

}  // namespace Tev

#endif
