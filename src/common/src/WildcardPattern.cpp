#include "WildcardPattern.h"

#include <cstring>
#include <utility>

namespace Tev {

namespace {

constexpr std::string_view wildcard = ".*";
constexpr std::string_view metacharacters = ".[](){}*+?|^$\\";

bool beginsWith(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && std::memcmp(text.data(), prefix.data(), prefix.size()) == 0;
}

bool endsWith(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() &&
           std::memcmp(text.data() + text.size() - suffix.size(), suffix.data(), suffix.size()) == 0;
}

/// Finds `piece`, which is not empty, in `text`. Looking for its first character is the quickest way while that is
/// rare; where it is not, memmem keeps the time linear.
const char* find(std::string_view text, std::string_view piece) {
    constexpr int candidates = 8;
    const char* const end = text.data() + text.size();
    const char* at = text.data();
    for (int i = 0; i < candidates; ++i) {
        at = static_cast<const char*>(std::memchr(at, piece.front(), static_cast<std::size_t>(end - at)));
        if (at == nullptr || static_cast<std::size_t>(end - at) < piece.size()) {
            return nullptr;
        }
        if (std::memcmp(at, piece.data(), piece.size()) == 0) {
            return at;
        }
        ++at;
    }
    return static_cast<const char*>(memmem(at, static_cast<std::size_t>(end - at), piece.data(), piece.size()));
}

/// The literals between the wildcards: one more than there are wildcards, some perhaps empty.
std::vector<std::string> split(std::string_view pattern) {
    std::vector<std::string> literals;
    for (;;) {
        const std::size_t end = pattern.find(wildcard);
        literals.emplace_back(pattern.substr(0, end));
        if (end == std::string_view::npos) {
            return literals;
        }
        pattern.remove_prefix(end + wildcard.size());
    }
}

}  // namespace

std::optional<WildcardPattern> WildcardPattern::parse(const std::string& pattern) {
    std::string_view body = pattern;
    const bool anchoredAtBegin = !body.empty() && body.front() == '^';
    body.remove_prefix(anchoredAtBegin ? 1 : 0);
    const bool anchoredAtEnd = !body.empty() && body.back() == '$';
    body.remove_suffix(anchoredAtEnd ? 1 : 0);

    std::vector<std::string> literals = split(body);
    for (const std::string& text : literals) {
        if (text.find_first_of(metacharacters) != std::string::npos) {
            return std::nullopt;
        }
    }
    return WildcardPattern(std::move(literals), anchoredAtBegin, anchoredAtEnd);
}

WildcardPattern::WildcardPattern(std::vector<std::string> literals, bool anchoredAtBegin, bool anchoredAtEnd)
    : literal(literals.size() == 1 && anchoredAtBegin && anchoredAtEnd) {
    if (anchoredAtBegin) {
        prefix = std::exchange(literals.front(), {});
    }
    if (anchoredAtEnd) {
        suffix = std::exchange(literals.back(), {});
    }
    for (std::string& text : literals) {
        if (!text.empty()) {
            middle.push_back(std::move(text));
        }
    }
}

bool WildcardPattern::matches(std::string_view text) const noexcept {
    if (literal) {
        return text == prefix;
    }
    if (!beginsWith(text, prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    if (!endsWith(text, suffix)) {
        return false;
    }
    text.remove_suffix(suffix.size());
    for (const std::string& piece : middle) {
        const char* const found = find(text, piece);
        if (found == nullptr) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(found - text.data()) + piece.size());
    }
    return true;
}

}  // namespace Tev
