#ifndef TEV_TRANSFER_FAILURE_H
#define TEV_TRANSFER_FAILURE_H

#include <string>
#include <vector>

#include "KnownHosts.h"
#include "TevException.h"
#include "TransferSettings.h"

namespace Tev {

/// Turns the client's words into the code and the sentence that the operator gets. The words are those of OpenSSH 9.2;
/// words that are not known are handed on as they are.
class TransferFailure {
public:
    /// `settings` have been checked. All arguments must outlive the object.
    TransferFailure(const TransferSettings& settings, const KnownHosts& knownHosts, const std::string& remotePath);

    /// Whether the client says that a command failed. Other lines are the server's.
    static bool isIn(const std::vector<std::string>& words);

    /// Whether the server has not even opened the file that was to be sent.
    static bool isNotOpened(const std::vector<std::string>& words);

    /// Whether the server has no file to be removed.
    static bool isNotThere(const std::vector<std::string>& words);

    /// The client ended before it was connected.
    TevException ofConnection(const std::vector<std::string>& words) const;

    /// The server did not take the file.
    TevException ofPut(const std::vector<std::string>& words) const;

    /// The file is on the server, but not in its place.
    TevException ofRename(const std::vector<std::string>& words) const;

    /// The client ended in the middle.
    TevException ofBrokenConnection(const std::vector<std::string>& words) const;

private:
    struct Row;

    TevException find(const std::vector<Row>& rows, const std::vector<std::string>& words) const;
    static bool matches(const Row& row, const std::string& line);
    std::string filled(const std::string& sentence, const std::string& line) const;

    const TransferSettings& settings;
    const KnownHosts& knownHosts;
    const std::string& remotePath;
};

}  // namespace Tev

#endif
