#include "TransferSettings.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "ControlCharacter.h"
#include "SftpWrapper.h"
#include "TevException.h"

namespace Tev {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view digits = "0123456789"sv;
constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"sv;

// What the client's buffer for a password holds; it drops the rest without a word.
constexpr std::size_t longestPassword = 1023;
constexpr std::size_t longestHost = 253;
constexpr int largestDscp = 63;

[[noreturn]] void refuse(const char* reason) {
    throw TevException(TevReturnInvalidArgument, "%s", reason);
}

bool isOneOf(char character, std::initializer_list<std::string_view> sets) {
    return std::any_of(sets.begin(), sets.end(),
                       [character](std::string_view set) { return set.find(character) != std::string_view::npos; });
}

bool isHostName(const std::string& text) {
    return !text.empty() && text.size() <= longestHost && isOneOf(text[0], {letters, digits, "_"sv}) &&
           std::all_of(text.begin(), text.end(), [](char c) {
               return isOneOf(c, {letters, digits, "._-"sv});
           });
}

/// With or without a zone, as in "fe80::1%eth0".
bool isIpv6Address(const std::string& text) {
    const std::size_t percent = text.find('%');
    in6_addr address{};
    return text.find('\0') == std::string::npos &&
           inet_pton(AF_INET6, text.substr(0, percent).c_str(), &address) == 1 &&
           (percent == std::string::npos || isHostName(text.substr(percent + 1)));
}

std::string checkedHost(const std::string& host) {
    if (isHostName(host)) {
        return host;
    }
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        std::string inside = host.substr(1, host.size() - 2);
        // A name that stands for an IPv6 address comes in brackets as well.
        if (isHostName(inside)) {
            return inside;
        }
        if (isIpv6Address(inside)) {
            return host;
        }
    }
    refuse("the host is neither a name nor an IPv4 address nor an IPv6 address in brackets");
}

int hexValue(char digit) {
    constexpr std::string_view lower = "0123456789abcdef"sv;
    constexpr std::string_view upper = "0123456789ABCDEF"sv;
    const std::size_t found = lower.find(digit);
    return static_cast<int>(found != std::string_view::npos ? found : upper.find(digit));
}

/// Decodes percent escapes once; what is none stays as it is.
std::string decoded(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 && hexValue(text[i + 2]) >= 0) {
            result += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

std::string checkedUser(const std::string& encoded) {
    if (encoded.find(':') != std::string::npos) {
        refuse("the URI holds a password; give it separately");
    }
    std::string user = decoded(encoded);
    if (user.empty()) {
        refuse("the URI names no user");
    }
    // What the client itself refuses; it does so after the host's name was looked up.
    if (std::any_of(user.begin(), user.end(), [](char c) { return isControl(c) || isOneOf(c, {"\"&'();<>`{|}"sv}); })) {
        refuse("the user's name holds a control character or one of \" & ' ( ) ; < > ` { | }");
    }
    if (user.front() == '-' || user.back() == '\\' || user.find(" -") != std::string::npos ||
        user.find("\t-") != std::string::npos) {
        refuse("the user's name begins with \"-\", has a word that does, or ends in \"\\\"");
    }
    return user;
}

void checkPassword(const std::string& password) {
    if (password.find_first_of("\n\r\0"sv) != std::string::npos) {
        refuse("the password holds a line break or a null character");
    }
    if (password.size() > longestPassword) {
        refuse("the password has more than 1023 bytes");
    }
}

std::string checkedPort(const std::string& port) {
    if (port.empty() || port == "0") {
        return {};
    }
    const bool isNumber =
        port.size() <= 5 && port.front() != '0' && port.find_first_not_of(digits) == std::string::npos;
    if (!isNumber || std::stoi(port) > 65535) {
        refuse("the port is not a number from 1 to 65535");
    }
    return port;
}

/// An empty list is the client's own choice. A name that begins with "+", "-" or "^" would change that choice.
void checkAlgorithms(const std::string& list, const char* what) {
    char before = ',';
    for (const char character : list + (list.empty() ? "" : ",")) {
        const bool isFirst = before == ',';
        const bool isFine = character == ','
                                ? !isFirst
                                : isOneOf(character, {letters, digits, "@._"sv}) || (character == '-' && !isFirst);
        if (!isFine) {
            throw TevException(TevReturnInvalidArgument, "the list of %s is not one of names separated by commas",
                               what);
        }
        before = character;
    }
}

}  // namespace

TransferSettings TransferSettings::checked() const {
    TransferSettings result = *this;
    if (action != SftpWrapper::Upload) {
        refuse("the action is not an upload");
    }
    result.host = checkedHost(host);
    result.port = checkedPort(port);
    result.user = checkedUser(user);
    checkPassword(password);
    checkAlgorithms(ciphers, "ciphers");
    checkAlgorithms(keyExchanges, "key exchanges");
    checkAlgorithms(macs, "MACs");
    if (dscp > largestDscp) {
        refuse("the DSCP value is above 63");
    }
    if (localFile.find('\0') != std::string::npos) {
        refuse("the local file's name holds a null character");
    }
    return result;
}

}  // namespace Tev
