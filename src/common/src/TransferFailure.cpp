#include "TransferFailure.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "ClientWords.h"

namespace Tev {

/// A line that begins with `beginning`, and holds `words` and `moreWords` after it, is told in this way: what else is
/// in a line may be the server's. The last row of a list stands for all lines. In the sentence, %h is the host, %p the
/// port, %u the user, %f the remote file, %s the local one, %k the command that forgets a key; %r is the reason at the
/// line's end, after the last ": ", %n the one after the port, and %l the whole line.
struct TransferFailure::Row {
    const char* beginning;
    const char* words;
    const char* moreWords;
    TevReturnT code;
    const char* sentence;
};

namespace {

std::string afterLast(const std::string& line, const std::string& separator) {
    const std::size_t found = line.rfind(separator);
    return found == std::string::npos ? line : line.substr(found + separator.size());
}

constexpr const char* notOpened = "dest open ";

bool isInOne(const std::vector<std::string>& words, const std::string& text) {
    return std::any_of(words.begin(), words.end(),
                       [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

}  // namespace

TransferFailure::TransferFailure(const TransferSettings& checkedSettings, const KnownHosts& knownHostsFile,
                                 const std::string& path)
    : settings(checkedSettings), knownHosts(knownHostsFile), remotePath(path) {}

bool TransferFailure::isIn(const std::vector<std::string>& words) {
    // Looked for anywhere: the server may write the beginning of the line, and no failure must be missed. The first two
    // are the names of our files.
    static const std::vector<const char*> texts = {"/.tev-",       "/dev/fd/3",    notOpened,        "write remote ",
                                                   "remote fsync", "close remote", "remote rename ", "remote delete ",
                                                   "Couldn't ",    "Invalid ",     "Unterminated "};
    return std::any_of(texts.begin(), texts.end(), [&](const char* text) { return isInOne(words, text); });
}

bool TransferFailure::isNotOpened(const std::vector<std::string>& words) {
    return isInOne(words, notOpened);
}

bool TransferFailure::isNotThere(const std::vector<std::string>& words) {
    // Only at the end: the path may hold anything, and the client may have cut the line in it.
    constexpr std::string_view reason = ": No such file or directory";
    return std::any_of(words.begin(), words.end(), [&](const std::string& line) {
        return line.find("remote delete ") != std::string::npos && line.size() >= reason.size() &&
               line.compare(line.size() - reason.size(), reason.size(), reason) == 0;
    });
}

TevException TransferFailure::ofConnection(const std::vector<std::string>& words) const {
    static const std::vector<Row> rows = {
        {"Received disconnect from ", "", "", TevReturnFailure, "the server %h, port %p, has ended the connection: %l"},
        {"Disconnected from ", "", "", TevReturnFailure, "the server %h, port %p, has ended the connection: %l"},
        {"Host key for ", " has changed", "", TevReturnFailure,
         "the host key of %h has changed; if that is right, forget the old one with: %k"},
        {"ssh: Could not resolve hostname ", "", "", TevReturnFailure, "the host %h is not found: %r"},
        {"ssh: connect to host ", "", "", TevReturnFailure, "no connection to %h, port %p: %r"},
        {"command-line", "Bad SSH2 ", "", TevReturnFailure,
         "the SFTP client does not know all of the selected algorithms: %r"},
        {"Unable to negotiate with ", "", "", TevReturnFailure,
         "the server %h and the selected algorithms have nothing in common: %n"},
        {"subsystem request failed", "", "", TevReturnFailure, "the server %h does not offer SFTP"},
        {"Received message too long", "", "", TevReturnFailure,
         "the server %h does not speak SFTP: the user's login there writes a text of its own"},
        {"Connection ", "timed out", "", TevReturnFailure, "the server %h, port %p, does not answer: %l"},
        {"Timeout, server ", "not responding", "", TevReturnFailure, "the server %h, port %p, does not answer: %l"},
        // These begin with the user's name, or the name of a step.
        {"", ": Permission denied (", "password", TevReturnFailure,
         "the server %h does not accept the user %u with this password; check both"},
        {"", ": Permission denied (", "keyboard-interactive", TevReturnFailure,
         "the server %h does not accept the user %u with this password; check both"},
        {"", ": Permission denied (", "", TevReturnFailure,
         "the server %h does not let the user %u in with a password: %r"},
        {"", "Connection reset by", "", TevReturnFailure, "the server %h, port %p, has ended the connection: %l"},
        {"", "Connection closed by", "", TevReturnFailure, "the server %h, port %p, has ended the connection: %l"},
        {"", "", "", TevReturnFailure, "no connection to %h, port %p: %l"}};
    return find(rows, words);
}

TevException TransferFailure::ofPut(const std::vector<std::string>& words) const {
    static const std::vector<Row> rows = {
        {"dest open ", ": No such file or directory", "", TevReturnNotFound,
         "the folder of %f is not there on the server; make it first"},
        {"dest open ", ": Permission denied", "", TevReturnFailure,
         "the user %u may not write into the folder of %f on the server"},
        {"dest open ", "", "", TevReturnFailure, "the server does not create a file beside %f: %r"},
        {"write remote ", "", "", TevReturnFailure,
         "the server does not store the whole file, its disk may be full or a limit reached: %r"},
        {"remote fsync", "", "", TevReturnFailure, "the server does not bring the file to its disk: %r"},
        {"", "", "", TevReturnFailure, "the server does not take the file: %l"}};
    return find(rows, words);
}

TevException TransferFailure::ofRename(const std::vector<std::string>& words) const {
    static const std::vector<Row> rows = {
        {"remote rename ", ": Failure", "", TevReturnFailure,
         "the server does not put the file in the place of %f: if that is a folder, end the path with \"/\"; otherwise "
         "the server cannot replace a file"},
        {"remote rename ", "", "", TevReturnFailure, "the server does not put the file in the place of %f: %r"},
        {"", "", "", TevReturnFailure, "the server does not put the file in the place of %f: %l"}};
    return find(rows, words);
}

TevException TransferFailure::ofBrokenConnection(const std::vector<std::string>& words) const {
    static const std::vector<Row> rows = {
        {"read local ", "", "", TevReturnFailure, "the local file %s cannot be read: %r"},
        {"Timeout, server ", "not responding", "", TevReturnFailure, "the server %h does not answer any more"},
        {"", "", "", TevReturnFailure, "the connection to %h broke in the middle of the transfer: %r"}};
    return find(rows, words);
}

TevException TransferFailure::find(const std::vector<Row>& rows, const std::vector<std::string>& words) const {
    // A line that looks like the client's may be a part of what the server has said in the line before.
    for (const std::string& line : words) {
        for (auto row = rows.begin(); row != rows.end() - 1; ++row) {
            if (matches(*row, line)) {
                return {row->code, "%s", filled(row->sentence, line).c_str()};
            }
        }
    }
    const std::string line = words.empty() ? "the SFTP client has ended without a word" : words.front();
    return {rows.back().code, "%s", filled(rows.back().sentence, line).c_str()};
}

bool TransferFailure::matches(const Row& row, const std::string& line) {
    if (line.compare(0, std::strlen(row.beginning), row.beginning) != 0) {
        return false;
    }
    const std::size_t found = line.find(row.words, std::strlen(row.beginning));
    return found != std::string::npos && line.find(row.moreWords, found) != std::string::npos;
}

std::string TransferFailure::filled(const std::string& sentence, const std::string& line) const {
    std::string result;
    for (std::size_t i = 0; i < sentence.size(); ++i) {
        if (sentence[i] != '%') {
            result += sentence[i];
            continue;
        }
        switch (sentence[++i]) {
            case 'h':
                result += settings.host;
                break;
            case 'p':
                result += settings.port.empty() ? "22" : settings.port;
                break;
            case 'u':
                result += printable(settings.user);
                break;
            case 'f':
                result += printable(remotePath);
                break;
            case 's':
                result += printable(settings.localFile);
                break;
            case 'k':
                result += knownHosts.forgetCommand(settings.host, settings.port);
                break;
            case 'n':
                // "… port 22: no matching cipher found. Their offer: …"
                result +=
                    afterLast(line, " port " + (settings.port.empty() ? std::string("22") : settings.port) + ": ");
                break;
            case 'r':
                result += afterLast(line, ": ");
                break;
            default:
                result += line;
        }
    }
    return result;
}

}  // namespace Tev
