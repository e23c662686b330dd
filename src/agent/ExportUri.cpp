#include "ExportUri.h"

#include <Poco/Exception.h>
#include <Poco/URI.h>

#include "Text.h"

namespace TevAgent {

ExportUri::ExportUri(const std::string& text) {
    try {
        const Poco::URI uri(text);
        scheme = uri.getScheme();
        const std::string user = uri.getUserInfo().substr(0, uri.getUserInfo().find(':'));
        userAtHost = user.empty() ? "" : Text::escaped(user + "@" + uri.getHost());
    } catch (const Poco::Exception&) {
        // It is no URI.
    }
}

}  // namespace TevAgent
