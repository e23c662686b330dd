#include "ClientReader.h"

#include <cstddef>

#include "Require.h"

namespace TevFuzz {

namespace {

constexpr std::size_t longestLine = 2047;
constexpr const char* quotes = "\"'";
constexpr const char* blanks = " \t\r";

bool isOneOf(char character, const std::string& set) {
    return set.find(character) != std::string::npos;
}

/// Splits at blanks. Quotes keep a text together; a backslash takes their meaning, and its own, from what follows.
class Words {
public:
    Words(const std::string& text, const std::string& forbidden) : line(text), forbiddenOutside(forbidden) {}

    std::vector<std::string> read() {
        for (at = 0; at < line.size(); ++at) {
            if (quote == '\0' && isOneOf(line[at], blanks)) {
                isInWord = false;
            } else {
                begin();
                take();
            }
        }
        require(quote == '\0', "every quote is closed");
        return words;
    }

private:
    void begin() {
        if (!isInWord) {
            words.emplace_back();
            isInWord = true;
        }
    }

    void take() {
        const char character = line[at];
        if (character == '\\') {
            const bool isEscape = at + 1 < line.size() && isOneOf(line[at + 1], quote == '\0' ? "\\\"' " : "\\\"'");
            at += isEscape ? 1 : 0;
            words.back() += line[at];
        } else if (character == quote) {
            quote = '\0';
        } else if (quote == '\0' && isOneOf(character, quotes)) {
            quote = character;
        } else {
            require(quote != '\0' || !isOneOf(character, forbiddenOutside), "no character has a meaning of its own");
            words.back() += character;
        }
    }

    const std::string line;
    const std::string forbiddenOutside;
    std::vector<std::string> words;
    std::size_t at = 0;
    char quote = '\0';  ///< the one that is open
    bool isInWord = false;
};

std::string withoutBrackets(const std::string& host) {
    const bool isBracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    return isBracketed ? host.substr(1, host.size() - 2) : host;
}

}  // namespace

std::vector<std::string> commandWords(const std::string& command) {
    require(command.size() <= longestLine, "a command fits the client's buffer");
    require(command.find_first_of(std::string("\n\0", 2)) == std::string::npos, "a command is one line");
    return Words(command, "*?[]{}#!~").read();
}

std::vector<std::string> optionWords(const std::string& value) {
    require(value.find_first_of(std::string("\n\0", 2)) == std::string::npos, "an option is one line");
    return Words(value, "#").read();
}

ClientCall::ClientCall(const std::vector<std::string>& words) {
    std::size_t i = 1;
    for (; i < words.size() && words[i] != "--"; ++i) {
        const std::string& word = words[i];
        const std::size_t equals = word.find('=');
        if (word == "-v") {
            isVerbose = true;
        } else if (word == "-F" || word == "-b" || word == "-R") {
            ++i;
        } else {
            require(word.rfind("-o", 0) == 0 && equals != std::string::npos, "an option is one of those that are used");
            const std::vector<std::string> values = optionWords(word.substr(equals + 1));
            requireEqual(values.size(), 1U, "the number of values of an option");
            require(options.emplace(word.substr(2, equals - 2), values[0]).second, "an option is given once");
        }
    }
    requireEqual(words.size(), i + 2, "the number of words, the host's being the last one");
    const std::string& given = words[i + 1];
    // What is no host alone the client would split into user, host, port and path.
    const std::string inside = withoutBrackets(given);
    require(given.front() != '-' && given.find_first_of("@/ ,;$`") == std::string::npos &&
                (inside != given || given.find(':') == std::string::npos),
            "the host is a host and nothing else");
    host = inside;
}

}  // namespace TevFuzz
