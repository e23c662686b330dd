#include <arpa/inet.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "ClientCommandLine.h"
#include "ClientReader.h"
#include "Pattern.h"
#include "Pieces.h"
#include "QuotedText.h"
#include "RemoteFile.h"
#include "Require.h"
#include "TevException.h"
#include "TransferSettings.h"

// The input is the settings of a transfer: user, host, port, ciphers, key exchanges, MACs, password, local file, remote
// path, and flags: the byte of the DSCP value, then "v" for debug mode and "d" for an action that is no upload. What is
// accepted comes back, when the client's way of reading is applied to its command line and its commands, as the very
// same single argument; never as an option, a second command or a pattern. What is refused is what the rules refuse.

namespace {

using namespace TevFuzz;
using Tev::RemoteFile;
using Tev::TransferSettings;

constexpr const char* knownHosts = "/known hosts";

TransferSettings settingsOf(Pieces& pieces) {
    TransferSettings settings{};
    settings.program = "/usr/bin/sftp";
    settings.user = pieces.next();
    settings.host = pieces.next();
    settings.port = pieces.next();
    settings.ciphers = pieces.next();
    settings.keyExchanges = pieces.next();
    settings.macs = pieces.next();
    settings.password = pieces.next();
    settings.localFile = pieces.next();
    settings.remotePath = pieces.next();
    const std::string flags = pieces.next();
    settings.dscp = static_cast<unsigned char>(flags.empty() ? 0 : flags[0]);
    settings.debug = flags.find('v', 1) != std::string::npos;
    settings.action = flags.find('d', 1) == std::string::npos ? 1 : 2;
    return settings;
}

bool holds(const std::string& text, const std::string& anyOf) {
    return text.find_first_of(anyOf) != std::string::npos;
}

/// The text with percent escapes decoded, once.
std::string decoded(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string digits = text.substr(i + 1, 2);
        const bool isEscape = text[i] == '%' && digits.size() == 2 &&
                              std::all_of(digits.begin(), digits.end(), [](unsigned char c) { return isxdigit(c); });
        result += isEscape ? static_cast<char>(std::strtol(digits.c_str(), nullptr, 16)) : text[i];
        i += isEscape ? 2 : 0;
    }
    return result;
}

bool isUser(const std::string& user) {
    static const Pattern words("^[^-]$|^[^-].*[^\\]$");
    static const Pattern options("[[:blank:]]-");
    static const Pattern forbidden("[[:cntrl:]\"&'();<>`{|}]");
    return words.matches(user) && !options.matches(user) && !forbidden.matches(user) && user != "\\";
}

/// What the host is to the client, without brackets; empty when it is none.
std::string hostOf(const std::string& text) {
    static const Pattern names("^[A-Za-z0-9_][A-Za-z0-9._-]{0,252}$");
    if (names.matches(text)) {
        return text;
    }
    if (text.size() < 3 || text.front() != '[' || text.back() != ']') {
        return "";
    }
    const std::string inside = text.substr(1, text.size() - 2);
    const std::string zone = inside.substr(std::min(inside.find('%'), inside.size()));
    in6_addr address{};
    const bool isAddress = inside.find('\0') == std::string::npos &&
                           inet_pton(AF_INET6, inside.substr(0, inside.size() - zone.size()).c_str(), &address) == 1 &&
                           (zone.empty() || names.matches(zone.substr(1)));
    return names.matches(inside) || isAddress ? inside : "";
}

bool isAccepted(const TransferSettings& settings) {
    static const Pattern ports("^(0|[1-9][0-9]{0,4})?$");
    static const Pattern lists("^([A-Za-z0-9@._][A-Za-z0-9@._-]*(,[A-Za-z0-9@._][A-Za-z0-9@._-]*)*)?$");
    return settings.action == 1 && settings.dscp < 64 && !hostOf(settings.host).empty() &&
           settings.user.find(':') == std::string::npos && isUser(decoded(settings.user)) &&
           ports.matches(settings.port) && std::strtol(settings.port.c_str(), nullptr, 10) < 65536 &&
           lists.matches(settings.ciphers) && lists.matches(settings.keyExchanges) && lists.matches(settings.macs) &&
           settings.password.size() < 1024 && !holds(settings.password, std::string("\n\r\0", 3)) &&
           settings.localFile.find('\0') == std::string::npos;
}

void checkOption(const std::map<std::string, std::string>& options, const char* name, const std::string& value) {
    const auto found = options.find(name);
    require(value.empty() == (found == options.end()), "an option is there when there is something to tell");
    if (found != options.end()) {
        requireEqual(found->second, value, name);
    }
}

void checkCommandLine(const TransferSettings& given) {
    const TransferSettings settings = given.checked();
    const ClientCall call(Tev::clientCommandLine(settings, Tev::quotedText(knownHosts), 7));
    checkOption(call.options, "User", decoded(given.user));
    checkOption(call.options, "Port", given.port == "0" ? "" : given.port);
    checkOption(call.options, "Ciphers", given.ciphers);
    checkOption(call.options, "KexAlgorithms", given.keyExchanges);
    checkOption(call.options, "MACs", given.macs);
    checkOption(call.options, "UserKnownHostsFile", knownHosts);
    checkOption(call.options, "IPQoS", std::to_string(given.dscp * 4));
    checkOption(call.options, "BatchMode", "no");
    checkOption(call.options, "StrictHostKeyChecking", "accept-new");
    checkOption(call.options, "ProxyCommand", "");
    requireEqual(call.host, hostOf(given.host), "the host");
    requireEqual(call.isVerbose, given.debug, "whether the client tells its steps");
    requireEqual(settings.password, given.password, "the password");
}

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

void checkCommands(const RemoteFile& file, const std::string& path) {
    using Words = std::vector<std::string>;
    static const Pattern temporaryNames("^\\.tev-[0-9a-f]{16}$");
    requireEqual(file.path(), path, "the remote path");
    const std::string temporary = file.temporaryPath();
    requireEqual(folderOf(temporary), folderOf(path), "the folder of the temporary file");
    require(temporaryNames.matches(temporary.substr(folderOf(path).size())), "the temporary name is made here");
    require(commandWords(file.putCommand()) == Words({"-put", "-f", "--", "/dev/fd/3", temporary}),
            "the client puts descriptor 3 to the temporary file");
    require(commandWords(file.renameCommand()) == Words({"-rename", "--", temporary, path}),
            "the client renames the temporary file");
    require(commandWords(file.removeCommand()) == Words({"-rm", "--", temporary}),
            "the client removes the temporary file");
}

void checkRemoteFile(const TransferSettings& settings) {
    const std::string& given = settings.remotePath;
    const bool isFolder = given.size() > 1 && given.back() == '/';
    const std::string local = settings.localFile.substr(settings.localFile.rfind('/') + 1);
    const std::string path = given + (isFolder ? local : "");
    const std::string name = path.substr(folderOf(path).size());
    try {
        checkCommands(RemoteFile(given, settings.localFile), path);
        require(!name.empty() && name != "." && name != "..", "a path that is accepted names a file");
    } catch (const Tev::TevException& refused) {
        requireEqual(refused.getReturnCode(), TevReturnInvalidArgument, "the code for a remote path");
        // Both names are in one line, each byte takes up to two.
        require(name.empty() || name == "." || name == ".." || holds(path, std::string("\n\0", 2)) ||
                    path.size() > 2047 / 4 - 30,
                "a path is refused for a reason");
    }
}

/// Any text of one line is quoted so that both ways of reading give it back.
void checkQuoting(const std::string& text) {
    if (text.size() < 1000 && !holds(text, std::string("\n\0", 2))) {
        const std::string quoted = Tev::quotedText(text);
        require(optionWords(quoted) == std::vector<std::string>{text}, "a quoted option is one word, the text");
        require(commandWords(quoted) == std::vector<std::string>{text}, "a quoted argument is one word, the text");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Pieces pieces(data, size);
    const TransferSettings settings = settingsOf(pieces);
    if (isAccepted(settings)) {
        checkCommandLine(settings);
    } else {
        try {
            settings.checked();
            require(false, "what the rules refuse is refused");
        } catch (const Tev::TevException& refused) {
            requireEqual(refused.getReturnCode(), TevReturnInvalidArgument, "the code of a refusal");
        }
    }
    checkRemoteFile(settings);
    for (const std::string& text : {settings.user, settings.remotePath, settings.localFile}) {
        checkQuoting(text);
    }
    return 0;
}
