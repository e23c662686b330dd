#ifndef TEV_KNOWN_HOSTS_H
#define TEV_KNOWN_HOSTS_H

#include <string>

namespace Tev {

/// The file in which the client remembers the servers' host keys: `known_hosts` in the state folder.
class KnownHosts {
public:
    /// Makes the folder (mode 0700) and the file where they are missing. Throws TevException when no line can be added
    /// to the file, for the client would then trust any key and say nothing.
    KnownHosts();

    /// Throws TevException when the file holds nothing, although the client is connected by now.
    void checkKeyIsKept() const;

    /// Absolute.
    const std::string& path() const { return file; }

    /// The value of the client's option that names the file.
    std::string option() const;

    /// A command for a shell that forgets the key of a server; `host` and `port` as the client has them.
    std::string forgetCommand(const std::string& host, const std::string& port) const;

private:
    std::string file;
};

}  // namespace Tev

#endif
