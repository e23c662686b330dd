#ifndef TEV_REMOTE_FILE_H
#define TEV_REMOTE_FILE_H

#include <string>

namespace Tev {

/// The file to be replaced on the server, the temporary one beside it, and the client's commands for both. Each command
/// is one line without its end; a failure of it does not end the client.
class RemoteFile {
public:
    /// `path` is as for `SftpWrapper`. Throws TevException with code -8 for a path that cannot be put into the client's
    /// command, or names no file; and std::system_error when the system has no random bytes.
    RemoteFile(const std::string& path, const std::string& localFile);

    const std::string& path() const { return target; }

    /// Its name is drawn anew for each object.
    const std::string& temporaryPath() const { return temporary; }

    /// Sends the client's descriptor 3 to the temporary file, and asks the server to bring it to its disk.
    std::string putCommand() const;
    std::string renameCommand() const;
    std::string removeCommand() const;

private:
    std::string target;
    std::string temporary;
};

}  // namespace Tev

#endif
