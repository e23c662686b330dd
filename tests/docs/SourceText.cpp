#include "SourceText.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace TevTest {

namespace {

bool isWord(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool isBlank(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

class Scanner {
public:
    explicit Scanner(const std::string& text) : source(text) {}

    std::vector<SourceText> run() {
        while (at < source.size()) {
            step();
        }
        return std::move(found);
    }

private:
    /// What a bracket that is open has seen so far.
    struct Bracket {
        std::string call{};                        ///< the name before a parenthesis
        std::size_t firstText = 0;                 ///< how many texts were found before it
        std::optional<std::size_t> textsAtCode{};  ///< and before the return code in it
        std::string assigned{};                    ///< the name before the last "=" in it
    };

    void step() {
        const char c = source[at];
        if (source.compare(at, 2, "//") == 0 || (c == '#' && isFirstOfLine())) {
            at = std::min(source.find('\n', at), source.size());
        } else if (source.compare(at, 2, "/*") == 0) {
            at = std::min(source.find("*/", at), source.size() - 2) + 2;
        } else if (c == '"') {
            takeText();
        } else if (c == '\'') {
            skipCharacter();
        } else if (isWord(c)) {
            takeWord();
        } else {
            takeMark(c);
            ++at;
        }
    }

    bool isFirstOfLine() const {
        const std::size_t before = source.find_last_not_of(" \t", at == 0 ? 0 : at - 1);
        return at == 0 || before == std::string::npos || source[before] == '\n';
    }

    void takeWord() {
        const std::size_t begin = at;
        // A quote inside a number parts its digits.
        while (at < source.size() && (isWord(source[at]) || (source[at] == '\'' && std::isdigit(source[begin]) != 0))) {
            ++at;
        }
        word = source.substr(begin, at - begin);
        if (word == "R" && at < source.size() && source[at] == '"') {
            takeRawText();
            return;
        }
        if (word.compare(0, 9, "TevReturn") == 0 && word.size() > 10) {
            brackets.back().textsAtCode = found.size();
        }
    }

    void takeMark(char c) {
        if (c == '(' || c == '{') {
            brackets.push_back({c == '(' ? word : "", found.size()});
        } else if ((c == ')' || c == '}') && brackets.size() > 1) {
            const Bracket& closed = brackets.back();
            if (c == '}' && closed.textsAtCode) {
                found.erase(found.begin() + static_cast<std::ptrdiff_t>(closed.firstText),
                            found.begin() + static_cast<std::ptrdiff_t>(*closed.textsAtCode));
            }
            brackets.pop_back();
        } else if (c == ';') {
            brackets.back() = {brackets.back().call, found.size()};
        } else if (c == '=') {
            brackets.back().assigned = word;
        }
        if (!isBlank(c)) {
            word.clear();
        }
    }

    void skipCharacter() {
        at += source[at + 1] == '\\' ? 2 : 1;
        at = source.find('\'', at + 1) + 1;
    }

    void takeText() {
        SourceText text = emptyText();
        while (at < source.size() && source[at] == '"') {
            for (++at; source[at] != '"'; ++at) {
                text.text += source[at] == '\\' ? meaning(source[++at]) : std::string(1, source[at]);
            }
            ++at;
            while (at < source.size() && isBlank(source[at])) {
                ++at;
            }
        }
        found.push_back(std::move(text));
    }

    void takeRawText() {
        const std::size_t begin = source.find('(', at) + 1;
        const std::string mark = ")" + source.substr(at + 1, begin - at - 2) + "\"";
        const std::size_t end = source.find(mark, begin);
        found.push_back(emptyText());
        found.back().text = source.substr(begin, end - begin);
        at = end + mark.size();
    }

    /// With its place.
    SourceText emptyText() const {
        const auto here = source.begin() + static_cast<std::ptrdiff_t>(at);
        SourceText text{"", static_cast<std::size_t>(std::count(source.begin(), here, '\n')) + 1};
        for (const Bracket& bracket : brackets) {
            for (const std::string& name : {bracket.call, bracket.assigned}) {
                if (!name.empty()) {
                    text.names.push_back(name);
                }
            }
        }
        return text;
    }

    /// Of a character behind a backslash.
    static std::string meaning(char escaped) {
        return escaped == 'n' ? "\n" : isWord(escaped) ? std::string("\\") + escaped : std::string(1, escaped);
    }

    const std::string& source;
    std::size_t at = 0;
    std::string word;                  ///< the name that was passed last, if nothing but blanks came after it
    std::vector<Bracket> brackets{1};  ///< the first stands for the whole source
    std::vector<SourceText> found;
};

}  // namespace

std::vector<SourceText> SourceText::in(const std::string& source) {
    return Scanner(source).run();
}

bool SourceText::isIn(const std::vector<std::string>& others) const {
    return std::find_first_of(names.begin(), names.end(), others.begin(), others.end()) != names.end();
}

}  // namespace TevTest
