#ifndef TEV_AGENT_TEXT_H
#define TEV_AGENT_TEXT_H

#include <string>
#include <string_view>
#include <vector>

/// What readers of files, and what is shown on a terminal, ask of texts. Texts are UTF-8, unless a function says what
/// it makes of others.
namespace TevAgent::Text {

/// Whether `text` holds a control character: U+0000 to U+001F, U+007F to U+009F.
bool hasControl(std::string_view text);

/// `text` with each of its control characters, and of the invisible ones that change how a terminal shows the others
/// (U+202E and its like), written as an escape: `\n`, `\t`, `\r`, else `\x`, `\u` or `\U` and the code in two, four or
/// eight hexadecimal digits. A byte that is not UTF-8 becomes U+FFFD: a terminal may take it for a control character.
std::string escaped(std::string_view text);

/// Whether all of `text` is what XML calls white space; so is an empty text.
bool isBlank(std::string_view text);

/// `text` without the white space, as XML defines it, at its two ends.
std::string_view trimmed(std::string_view text);

/// `text` as a message shows it: what goes beyond 80 bytes is replaced by "...". No character is cut in two.
std::string shortened(std::string_view text);

/// `text` shortened and in quotation marks.
std::string quoted(std::string_view text);

/// The parts of `text` between the separators, as views into it: one more than there are separators.
std::vector<std::string_view> split(std::string_view text, char separator);

/// Why `name` cannot stand on either side of the "=" of an RDN: "is empty", or that it holds "=", "," or a control
/// character, with the name quoted; an empty text when it can.
std::string faultOfRdnPart(std::string_view name);

}  // namespace TevAgent::Text

#endif
