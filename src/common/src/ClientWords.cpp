#include "ClientWords.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <utility>

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

}  // namespace

std::string printable(std::string_view text) {
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        // U+0080 to U+009F are "\xc2\x80" to "\xc2\x9f" in UTF-8.
        if (byte >= 0x80 && byte < 0xa0 && !result.empty() && result.back() == '\xc2') {
            result.back() = '?';
        } else {
            result += byte < 0x20 || byte == 0x7f ? '?' : character;
        }
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
