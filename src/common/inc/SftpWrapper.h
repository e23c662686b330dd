#ifndef TEV_SFTP_WRAPPER_H
#define TEV_SFTP_WRAPPER_H

#include <string>

#include "TevCommonApi.h"
#include "TevReturnT.h"

namespace Tev {

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

private:
    std::string program;
    std::string user;
    std::string password;
    std::string host;
    std::string port;
    SftpAction action;
    std::string localFile;
    std::string remotePath;
    bool debug;
    std::string ciphers;
    std::string keyExchanges;
    std::string macs;
    long timeout;
    unsigned char dscp;
    std::string errorMessage;
};

}  // namespace Tev

#endif
