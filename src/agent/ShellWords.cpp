#include "ShellWords.h"

#include "Failure.h"

namespace TevAgent {

namespace {

bool isBlank(char character) {
    return character == ' ' || character == '\t';
}

/// What was read of a line.
class Reading {
public:
    enum class State { Plain, Comment, Single, Double, Escape, EscapeInDouble };

    explicit Reading(std::string_view line) {
        for (const char character : line) {
            take(character);
        }
    }

    std::vector<std::string> words;
    State state = State::Plain;
    bool isInWord = false;  ///< the last one goes on

private:
    void take(char character) {
        switch (state) {
            case State::Plain:
                takePlain(character);
                break;
            case State::Comment:
                break;
            case State::Single:
                takeQuoted(character, '\'');
                break;
            case State::Double:
                takeQuoted(character, '"');
                break;
            case State::EscapeInDouble:
                words.back() += character == '"' || character == '\\' ? "" : "\\";
                words.back() += character;
                state = State::Double;
                break;
            case State::Escape:
                words.back() += character;
                state = State::Plain;
                break;
        }
    }

    void takePlain(char character) {
        if (isBlank(character)) {
            isInWord = false;
            return;
        }
        if (!isInWord && character == '#') {
            state = State::Comment;
            return;
        }
        if (!isInWord) {
            words.emplace_back();
            isInWord = true;
        }
        if (character == '\'') {
            state = State::Single;
        } else if (character == '"') {
            state = State::Double;
        } else if (character == '\\') {
            state = State::Escape;
        } else {
            words.back() += character;
        }
    }

    void takeQuoted(char character, char end) {
        if (character == end) {
            state = State::Plain;
        } else if (character == '\\' && end == '"') {
            state = State::EscapeInDouble;
        } else {
            words.back() += character;
        }
    }
};

}  // namespace

std::vector<std::string> ShellWords::of(std::string_view line) {
    Reading reading(line);
    switch (reading.state) {
        case Reading::State::Single:
            throw Failure(ExitStatus::WrongUsage, "a ' has no second one that ends its quotation");
        case Reading::State::Double:
        case Reading::State::EscapeInDouble:
            throw Failure(ExitStatus::WrongUsage, "a \" has no second one that ends its quotation");
        case Reading::State::Escape:
            throw Failure(ExitStatus::WrongUsage, "nothing stands behind the \\ at the line's end");
        default:
            return std::move(reading.words);
    }
}

std::optional<ShellWords::Begun> ShellWords::begun(std::string_view line) {
    Reading reading(line);
    Begun begun{std::move(reading.words), "", Quote::None};
    switch (reading.state) {
        case Reading::State::Plain:
            break;
        case Reading::State::Single:
            begun.quote = Quote::Single;
            break;
        case Reading::State::Double:
            begun.quote = Quote::Double;
            break;
        default:
            return std::nullopt;
    }
    if (reading.isInWord) {
        begun.word = std::move(begun.before.back());
        begun.before.pop_back();
    }
    return begun;
}

std::string ShellWords::continued(std::string_view text, Quote quote) {
    std::string result;
    for (const char character : text) {
        if (quote == Quote::Single) {
            result += character == '\'' ? "'\\'" : "";
        } else if (character == '"' || character == '\\' ||
                   (quote == Quote::None && (isBlank(character) || character == '\'' || character == '#'))) {
            result += '\\';
        }
        result += character;
    }
    return result;
}

std::string ShellWords::end(Quote quote) {
    const std::string mark = quote == Quote::Single ? "'" : "\"";
    return (quote == Quote::None ? "" : mark) + " ";
}

}  // namespace TevAgent
