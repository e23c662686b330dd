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
    return line.find_first_not_of(' ') == std::string_view::npos || line == "Interrupt" ||
           line == "Connection closed" ||
           beginsWith(line, {"debug1: ", "OpenSSH_", "Authenticated to ", "Transferred: ", "Bytes per second: ",
                             "Warning: Permanently added ", "Couldn't send packet: Broken pipe", "@@@"});
}

}  // namespace

std::string printable(std::string_view text) {
    std::string result(text);
    std::replace_if(
        result.begin(), result.end(),
        [](char character) {
            const auto byte = static_cast<unsigned char>(character);
            return byte < 0x20 || byte == 0x7f;
        },
        '?');
    return result;
}

void ClientWords::add(std::string_view bytes) {
    for (const char character : bytes) {
        if (character == '\n' || character == '\r') {
            endLine();
        } else if (line.size() < longestLine) {
            line += character;
        }
    }
}

std::vector<std::string> ClientWords::take() {
    endLine();
    return std::exchange(lines, {});
}

void ClientWords::endLine() {
    line = printable(line);
    // "packet.c:sshpkt_vfatal():1909 (pid=1): " before what is said although the log level does not ask for it.
    if (beginsWith(line, {"packet.c:"}) && line.find("): ") != std::string::npos) {
        line.erase(0, line.find("): ") + 3);
    }
    while (!line.empty() && line.back() == ' ') {
        line.pop_back();
    }
    if (isLogging && !line.empty()) {
        LoggingWrapper& log = LoggingWrapper::instance();
        if (log.get_level() >= logLevel) {
            log.log_printf("execute", logLevel, 1, "sftp: %s", line.c_str());
        }
    }
    if (!isNoise(line) && lines.size() < mostLines) {
        lines.push_back(line);
    }
    line.clear();
}

}  // namespace Tev
