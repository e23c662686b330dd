#include "Diagnostics.h"

#include <unistd.h>

#include <atomic>
#include <exception>
#include <string_view>

#include "Descriptor.h"
#include "Screen.h"
#include "Text.h"

namespace TevAgent {

namespace {

thread_local Diagnostics::Capture* innermost = nullptr;

std::atomic<unsigned long> scriptLine{0};  ///< 0 for none

constexpr std::string_view noMemory = "tev-agent: no memory to tell of a failure\n";

/// What cannot be written to standard error has no other place to go.
void writeToStandardError(std::string_view text) {
    static_cast<void>(Descriptor::write(STDERR_FILENO, text));
}

}  // namespace

void Diagnostics::say(const std::string& sentence) noexcept {
    if (innermost == nullptr) {
        sayAtOnce(sentence);
        return;
    }
    try {
        innermost->sentences.push_back(sentence);
    } catch (const std::exception&) {
        writeToStandardError(noMemory);
    }
}

void Diagnostics::sayAtOnce(const std::string& sentence) noexcept {
    try {
        const unsigned long number = scriptLine;
        const std::string place = number == 0 ? "" : "line " + std::to_string(number) + ": ";
        const std::string prefix = Screen::of(STDERR_FILENO).emphasised(Screen::Emphasis::Title, "tev-agent:");
        writeToStandardError(prefix + " " + place + Text::escaped(sentence) + "\n");
    } catch (const std::exception&) {
        writeToStandardError(noMemory);
    }
}

Diagnostics::ScriptLine::ScriptLine(unsigned long number) {
    scriptLine = number;
}

Diagnostics::ScriptLine::~ScriptLine() {
    scriptLine = 0;
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
