#include "Diagnostics.h"

#include <unistd.h>

#include <cerrno>
#include <exception>
#include <string_view>

#include "Text.h"

namespace TevAgent {

namespace {

thread_local Diagnostics::Capture* innermost = nullptr;

/// What cannot be written to standard error has no other place to go.
void writeToStandardError(std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(STDERR_FILENO, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return;
        }
    }
}

}  // namespace

void Diagnostics::say(const std::string& sentence) noexcept {
    try {
        if (innermost != nullptr) {
            innermost->sentences.push_back(sentence);
        } else {
            writeToStandardError("tev-agent: " + Text::escaped(sentence) + "\n");
        }
    } catch (const std::exception&) {
        writeToStandardError("tev-agent: no memory to tell of a failure\n");
    }
}

Diagnostics::Capture::Capture() : outer(innermost) {
    innermost = this;
}

Diagnostics::Capture::~Capture() {
    innermost = outer;
    for (const std::string& sentence : sentences) {
        say(sentence);
    }
}

std::string Diagnostics::Capture::takeOr(const std::string& otherwise) {
    if (sentences.empty()) {
        return otherwise;
    }
    std::string joined;
    for (const std::string& sentence : sentences) {
        joined += (joined.empty() ? "" : "; ") + sentence;
    }
    sentences.clear();
    return joined;
}

}  // namespace TevAgent
