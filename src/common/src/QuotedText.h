#ifndef TEV_QUOTED_TEXT_H
#define TEV_QUOTED_TEXT_H

#include <string>

namespace Tev {

/// `text` in double quotes, with a backslash before what would end them: so the SFTP client takes any text without a
/// newline and a null character as it is, in its commands and in the values of its options.
std::string quotedText(const std::string& text);

}  // namespace Tev

#endif
