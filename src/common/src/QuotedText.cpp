#include "QuotedText.h"

namespace Tev {

// Not by way of a stream, which would end the text where memory runs out, and say nothing.
std::string quotedText(const std::string& text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted + '"';
}

}  // namespace Tev
