#include "ClientCommandLine.h"

#include <utility>

#include "QuotedText.h"

namespace Tev {

std::vector<std::string> clientCommandLine(const TransferSettings& settings, const std::string& knownHostsOption,
                                           int connectSeconds) {
    std::vector<std::string> words = {settings.program, "-F", "none",
                                      // Before -b, which would forbid to ask for the password.
                                      "-oBatchMode=no", "-b", "-"};
    if (!settings.port.empty()) {
        words.push_back("-oPort=" + settings.port);
    }
    words.insert(
        words.end(),
        {"-oUser=" + quotedText(settings.user), "-oPreferredAuthentications=password,keyboard-interactive",
         "-oPubkeyAuthentication=no", "-oHostbasedAuthentication=no", "-oGSSAPIAuthentication=no",
         "-oIdentityAgent=none", "-oNumberOfPasswordPrompts=1", "-oStrictHostKeyChecking=accept-new",
         "-oUserKnownHostsFile=" + knownHostsOption, "-oGlobalKnownHostsFile=/dev/null", "-oUpdateHostKeys=no",
         "-oConnectTimeout=" + std::to_string(connectSeconds), "-oServerAliveInterval=15", "-oServerAliveCountMax=3",
         // The upper six bits of the byte.
         "-oIPQoS=" + std::to_string(settings.dscp * 4)});
    if (settings.debug) {
        words.emplace_back("-v");
    } else {
        // Without the server's banner, which may say anything, but with the reasons for which a connection ends.
        words.insert(words.end(), {"-oLogLevel=ERROR", "-oLogVerbose=packet.c:sshpkt_vfatal():*"});
    }
    for (const auto& [option, list] : {std::pair<const char*, const std::string&>("-oCiphers=", settings.ciphers),
                                       {"-oKexAlgorithms=", settings.keyExchanges},
                                       {"-oMACs=", settings.macs}}) {
        if (!list.empty()) {
            words.push_back(option + list);
        }
    }
    // One request in flight: with more, the client forgets a failed write when a later one succeeds.
    words.insert(words.end(), {"-R", "1", "--", settings.host});
    return words;
}

}  // namespace Tev
