#ifndef TEV_SFTP_WRAPPER_H
#define TEV_SFTP_WRAPPER_H

#include <memory>
#include <string>

#include "TevCommonApi.h"
#include "TevReturnT.h"

namespace Tev {

struct TransferSettings;

/// One transfer of a file over SFTP, done by the OpenSSH client.
///
/// An object belongs to one thread; any number of them may run at once. `execute` blocks its thread only.
class TEV_COMMON_API SftpWrapper {
public:
    enum SftpAction {
        Upload = 1  ///< the local file to the remote path
    };

    /// Takes the settings as they are; `execute` checks them.
    ///
    /// `program`     path of the sftp client
    /// `user`        the user part of an URI, still percent-encoded
    /// `password`    as the server expects it
    /// `host`        a name, an IPv4 address or an IPv6 address in brackets
    /// `port`        decimal; "0" or empty for the client's default
    /// `localFile`   path of the file
    /// `remotePath`  the file on the server; one that ends in "/" names a folder, and the local file's name is appended
    /// `debug`       whether the client tells its steps
    /// `ciphers`, `keyExchanges`, `macs`  names separated by commas; empty for the client's own choice
    /// `timeout`     of the whole transfer, in milliseconds; 0 or less for none
    /// `dscp`        0 to 63, set on the connection
    SftpWrapper(const std::string& program, const std::string& user, const std::string& password,
                const std::string& host, const std::string& port, SftpAction action, const std::string& localFile,
                const std::string& remotePath, bool debug, const std::string& ciphers, const std::string& keyExchanges,
                const std::string& macs, long timeout, unsigned char dscp);

    /// Runs the transfer. Returns 0; -8 for a setting that is refused; -2 when the local or remote file or folder is
    /// not there; -10 when memory runs out; -1 for every other failure.
    TevReturnT execute();

    /// What the last `execute` failed of, in one sentence; empty after a success.
    std::string getErrorMessage() const;

    /// Ends every transfer of the process within about a second; those begun later fail at once, until `allowAgain`.
    /// They clean up as after any failure and return -1. May be called by signal handlers.
    static void interruptAll() noexcept;
    static void allowAgain() noexcept;

private:
    TevReturnT transfer();

    std::shared_ptr<const TransferSettings> settings;
    std::string errorMessage;
};

}  // namespace Tev

#endif
