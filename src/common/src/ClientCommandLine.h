#ifndef TEV_CLIENT_COMMAND_LINE_H
#define TEV_CLIENT_COMMAND_LINE_H

#include <string>
#include <vector>

#include "TransferSettings.h"

namespace Tev {

/// How the SFTP client is called: it takes its commands from standard input, asks for the password on its terminal,
/// keeps to the known-hosts file of `knownHostsOption`, and uses none of the user's own configuration, keys and agents.
/// `settings` have been checked; `connectSeconds` is the time for a connection, at least 1.
std::vector<std::string> clientCommandLine(const TransferSettings& settings, const std::string& knownHostsOption,
                                           int connectSeconds);

}  // namespace Tev

#endif
