#include "QuotedText.h"

#include <iomanip>
#include <sstream>

namespace Tev {

std::string quotedText(const std::string& text) {
    std::ostringstream stream;
    stream << std::quoted(text);
    return stream.str();
}

}  // namespace Tev
