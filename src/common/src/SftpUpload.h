#ifndef TEV_SFTP_UPLOAD_H
#define TEV_SFTP_UPLOAD_H

#include <sys/stat.h>

#include "FileDescriptor.h"
#include "KnownHosts.h"
#include "RemoteFile.h"
#include "SftpSession.h"
#include "TevException.h"
#include "TransferFailure.h"
#include "TransferSettings.h"
#include "TransferTime.h"

namespace Tev {

/// One upload: the file goes to a temporary one beside its place, then into its place, so that the old file is replaced
/// whole or not at all. After a failure the temporary file is removed where the server still answers.
class SftpUpload {
public:
    /// The time-out begins here. Throws TevException for settings that are refused, and for a local file or a
    /// known-hosts file that cannot be used.
    explicit SftpUpload(const TransferSettings& settings);
    SftpUpload(const SftpUpload&) = delete;
    SftpUpload& operator=(const SftpUpload&) = delete;

    /// Throws TevException, with a sentence for the operator, when the transfer fails.
    void run();

private:
    enum class Removal { Done, NotThere, Failed, NotAnswered };

    // The steps of a run; each throws what ends it, and has removed the temporary file then.
    void connect(SftpSession& session);
    void put(SftpSession& session);
    void bringIntoPlace(SftpSession& session);

    bool hasLocalChanged() const;
    TevException notConnected(SftpSession& session);
    TevException stopped();
    TevException withRest(const TevException& reason, Removal removal) const;
    Removal remove(SftpSession& session);
    Removal removeAnew();
    Removal removeOver(SftpSession& session) const;

    TransferTime time;
    TransferSettings settings;
    RemoteFile remote;
    struct stat localBefore {};
    FileDescriptor local;
    KnownHosts knownHosts;
    TransferFailure failure;
};

}  // namespace Tev

#endif
