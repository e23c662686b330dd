#ifndef TEV_CLIENT_WORDS_H
#define TEV_CLIENT_WORDS_H

#include <cstddef>
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
    /// So much of them is dropped as no failure needs.
    std::vector<std::string> take();

private:
    void endLine();
    void logLine();

    bool isLogging;
    std::string line;
    std::vector<std::string> lines;
    std::size_t linesLogged = 0;  // since the last call of take
};

/// `text`, in UTF-8, with "?" for each control character and each byte that is not part of a character, so that it can
/// be shown on a terminal.
std::string printable(std::string_view text);

}  // namespace Tev

#endif
