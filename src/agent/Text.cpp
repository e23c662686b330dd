#include "Text.h"

#include <cstddef>
#include <cstdio>

namespace TevAgent::Text {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n";
constexpr std::size_t maxShown = 80;

struct Control {
    unsigned int code = 0;
    std::size_t length = 0;  ///< in bytes; 0 when there is no control character
};

/// The control character that `text` has at `position`.
Control controlAt(std::string_view text, std::size_t position) {
    const auto byte = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned int first = byte(position);
    if (first < 0x20 || first == 0x7f) {
        return {first, 1};
    }
    if (first == 0xc2 && position + 1 < text.size() && byte(position + 1) >= 0x80 && byte(position + 1) <= 0x9f) {
        return {byte(position + 1), 2};
    }
    return {};
}

/// Whether `byte` is not the first one of a UTF-8 character.
bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U;
}

std::string escapeOf(unsigned int code) {
    switch (code) {
        case '\n':
            return "\\n";
        case '\t':
            return "\\t";
        case '\r':
            return "\\r";
        default: {
            char escape[5];
            std::snprintf(escape, sizeof escape, "\\x%02x", code & 0xffU);
            return escape;
        }
    }
}

}  // namespace

bool hasControl(std::string_view text) {
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (controlAt(text, position).length != 0) {
            return true;
        }
    }
    return false;
}

std::string escaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const Control control = controlAt(text, position);
        if (control.length != 0) {
            result += escapeOf(control.code);
            position += control.length;
        } else {
            result += text[position++];
        }
    }
    return result;
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(whiteSpace) == std::string_view::npos;
}

std::string_view trimmed(std::string_view text) {
    if (isBlank(text)) {
        return {};
    }
    const std::size_t begin = text.find_first_not_of(whiteSpace);
    return text.substr(begin, text.find_last_not_of(whiteSpace) - begin + 1);
}

std::string shortened(std::string_view text) {
    if (text.size() <= maxShown) {
        return std::string(text);
    }
    std::size_t end = maxShown;
    while (end > 0 && isContinuation(text[end])) {
        --end;
    }
    return std::string(text.substr(0, end)) + "...";
}

std::string quoted(std::string_view text) {
    return '"' + shortened(text) + '"';
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    std::size_t begin = 0;
    for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator, begin)) {
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    parts.push_back(text.substr(begin));
    return parts;
}

std::string faultOfRdnPart(std::string_view name) {
    if (name.empty()) {
        return "is empty";
    }
    for (const char forbidden : {'=', ','}) {
        if (name.find(forbidden) != std::string_view::npos) {
            return std::string("holds '") + forbidden + "': " + quoted(name);
        }
    }
    return hasControl(name) ? "holds a control character: " + quoted(name) : "";
}

}  // namespace TevAgent::Text
