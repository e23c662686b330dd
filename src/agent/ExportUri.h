#ifndef TEV_AGENT_EXPORT_URI_H
#define TEV_AGENT_EXPORT_URI_H

#include <string>

namespace TevAgent {

/// Where an export goes, as far as the operator who is asked for the password has to know. It is the component that
/// judges the URI, and takes it apart in the same way.
class ExportUri {
public:
    explicit ExportUri(const std::string& text);

    /// Whether it is a URI, and one that begins with "sftp:", in letters of either case.
    bool isSftp() const { return scheme == "sftp"; }

    /// "user@host", as the URI has them, with control characters as escapes and without a password; empty where it
    /// names no user.
    const std::string& account() const { return userAtHost; }

private:
    std::string scheme;
    std::string userAtHost;
};

}  // namespace TevAgent

#endif
