#include "Text.h"

#include <Poco/Unicode.h>

#include <cstddef>
#include <cstdio>

#include "Utf8.h"

namespace TevAgent::Text {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n";
constexpr std::size_t maxShown = 80;

bool isControl(char32_t code) {
    return code < 0x20 || (code >= 0x7f && code <= 0x9f);
}

/// Whether a terminal shows nothing for the character, but may show others in another order or place because of it.
bool isInvisible(char32_t code) {
    if (code < 0x80) {
        return false;
    }
    Poco::Unicode::CharacterProperties properties{};
    Poco::Unicode::properties(static_cast<int>(code), properties);
    return properties.type == Poco::Unicode::UCP_FORMAT || properties.type == Poco::Unicode::UCP_LINE_SEPARATOR ||
           properties.type == Poco::Unicode::UCP_PARAGRAPH_SEPARATOR;
}

std::string escapeOf(char32_t code) {
    switch (code) {
        case '\n':
            return "\\n";
        case '\t':
            return "\\t";
        case '\r':
            return "\\r";
        default: {
            char escape[11];
            std::snprintf(escape, sizeof escape,
                          code < 0x100     ? "\\x%02x"
                          : code < 0x10000 ? "\\u%04x"
                                           : "\\U%08x",
                          static_cast<unsigned int>(code));
            return escape;
        }
    }
}

}  // namespace

bool hasControl(std::string_view text) {
    while (!text.empty()) {
        if (isControl(Utf8::takeFirst(text))) {
            return true;
        }
    }
    return false;
}

std::string escaped(std::string_view text) {
    const std::string repaired = Utf8::repaired(text);
    std::string result;
    result.reserve(repaired.size());
    for (std::string_view rest = repaired; !rest.empty();) {
        const std::string_view before = rest;
        const char32_t code = Utf8::takeFirst(rest);
        if (isControl(code) || isInvisible(code)) {
            result += escapeOf(code);
        } else {
            result += before.substr(0, before.size() - rest.size());
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
    while (end > 0 && Utf8::isContinuation(text[end])) {
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
