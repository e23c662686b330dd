#include "ClientWords.h"

#include <Poco/UTF8Encoding.h>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <utility>

#include "ControlCharacter.h"
#include "LoggingWrapper.h"

namespace Tev {

namespace {

// More than any failure needs; what a server makes the client write beyond it is dropped.
constexpr std::size_t longestLine = 4096;
constexpr std::size_t mostLines = 200;
constexpr int logLevel = 6;

bool beginsWith(std::string_view text, std::initializer_list<std::string_view> beginnings) {
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [text](std::string_view beginning) { return text.substr(0, beginning.size()) == beginning; });
}

/// What the client says without a failure, or after one that it has told.
bool isNoise(std::string_view line) {
    return line.empty() || line == "Interrupt" || line == "Connection closed" ||
           beginsWith(line, {"debug1: ", "OpenSSH_", "Authenticated to ", "Transferred: ", "Bytes per second: ",
                             "Warning: Permanently added ", "Couldn't send packet: Broken pipe", "@@@"});
}

/// What `text`, which is not empty, begins with: a character in UTF-8, or a byte that is none.
std::string_view firstOf(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    const auto size = static_cast<std::size_t>(Poco::UTF8Encoding().sequenceLength(bytes, 1));
    const bool isWhole = size <= text.size() && Poco::UTF8Encoding::isLegal(bytes, static_cast<int>(size));
    return text.substr(0, isWhole ? size : 1);
}

bool isPrintable(std::string_view character) {
    if (character.size() == 1) {
        const bool isAscii = static_cast<unsigned char>(character[0]) < 0x80;
        return isAscii && !isControl(character[0]);
    }
    // U+0080 to U+009F are control characters, too.
    return character < "\xc2\x80" || character > "\xc2\x9f";
}

}  // namespace

std::string printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::string_view character = firstOf(text);
        result += isPrintable(character) ? character : "?";
        text.remove_prefix(character.size());
    }
    return result;
}

void ClientWords::add(std::string_view bytes) {
    for (const char character : bytes) {
        if (character == '\n') {
            endLine();
        } else if (line.size() < longestLine) {
            line += character;
        }
    }
}

std::vector<std::string> ClientWords::take() {
    endLine();
    linesLogged = 0;
    return std::exchange(lines, {});
}

void ClientWords::endLine() {
    // Only at its ends a carriage return is the client's own.
    line.erase(line.find_last_not_of("\r ") + 1);
    line.erase(0, line.find_first_not_of('\r'));
    line = printable(line);
    // "packet.c:sshpkt_vfatal():1909 (pid=1): " before what is said although the log level does not ask for it.
    if (beginsWith(line, {"packet.c:"}) && line.find("): ") != std::string::npos) {
        line.erase(0, line.find("): ") + 3);
    }
    if (isLogging && !line.empty() && LoggingWrapper::instance().get_level() >= logLevel) {
        logLine();
    }
    if (!isNoise(line) && lines.size() < mostLines) {
        lines.push_back(line);
    }
    line.clear();
}

void ClientWords::logLine() {
    ++linesLogged;
    if (linesLogged <= mostLines) {
        LoggingWrapper::instance().log_printf("execute", logLevel, 1, "sftp: %s", line.c_str());
    } else if (linesLogged == mostLines + 1) {
        LoggingWrapper::instance().log_printf("execute", logLevel, 1, "sftp: (more, which is dropped)");
    }
}

}  // namespace Tev
