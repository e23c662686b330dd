#ifndef XML_TEXT_H
#define XML_TEXT_H

#include <string>

namespace TevFuzz {

/// `text`, in UTF-8, as it stands in XML, in an attribute's value or between tags.
inline std::string xmlText(const std::string& text) {
    std::string result;
    for (const char c : text) {
        const bool isMarkup = c == '&' || c == '<' || c == '>' || c == '"' || c == '\t' || c == '\n' || c == '\r';
        result += isMarkup ? "&#" + std::to_string(c) + ';' : std::string(1, c);
    }
    return result;
}

}  // namespace TevFuzz

#endif
