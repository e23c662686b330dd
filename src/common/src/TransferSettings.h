#ifndef TEV_TRANSFER_SETTINGS_H
#define TEV_TRANSFER_SETTINGS_H

#include <cstring>
#include <string>

namespace Tev {

/// The settings of a transfer; for their meanings see `SftpWrapper`.
struct TransferSettings {
    std::string program;
    std::string user;
    std::string password;
    std::string host;
    std::string port;
    int action;
    std::string localFile;
    std::string remotePath;
    bool debug;
    std::string ciphers;
    std::string keyExchanges;
    std::string macs;
    long timeout;
    unsigned char dscp;

    /// Overwrites the password in memory.
    ~TransferSettings() { explicit_bzero(password.data(), password.size()); }

    /// The same settings in the form in which the client takes them: the user decoded, the port empty where the client
    /// is to choose it, a name as host without brackets. No part of them can be taken for an option, a second command
    /// or a pattern. Throws TevException with code -8 and a text that names the setting for what cannot be passed on.
    TransferSettings checked() const;
};

}  // namespace Tev

#endif
