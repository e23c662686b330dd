#ifndef BARE_CLIENT_H
#define BARE_CLIENT_H

#include <string>
#include <vector>

#include "ClientProcess.h"
#include "FileDescriptor.h"
#include "PseudoTerminal.h"
#include "TransferSettings.h"

namespace TevBench {

/// The SFTP client as a tight script would drive it: no time-out, no interruption, no look at what went wrong but to
/// throw std::runtime_error for it.
class BareClient {
public:
    /// One upload with the options and the dialogue of an export.
    static void upload(const Tev::TransferSettings& settings);

    /// One upload with the client's default options, and a plain put.
    static void uploadPlainly(const Tev::TransferSettings& settings);

private:
    BareClient(const Tev::TransferSettings& settings, const std::vector<std::string>& words);

    /// Sends the command and reads until the client has carried it out; gives the password when it is asked for.
    void run(const std::string& command);
    void leave();

    const Tev::TransferSettings& settings;
    Tev::FileDescriptor local;
    Tev::PseudoTerminal terminal;
    Tev::ClientProcess client;
};

}  // namespace TevBench

#endif
