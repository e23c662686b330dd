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

/// Whether a control character is in the UTF-8 text.
inline bool hasControl(const std::string& text) {
    char before = '\0';
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f || (before == '\xc2' && byte < 0xa0)) {
            return true;
        }
        before = c;
    }
    return false;
}

}  // namespace TevFuzz

#endif
