#include "ProcessState.h"

#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace TevAgent {

namespace {

std::string environmentText() {
    std::string text;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        text += *variable;
        text += '\n';
    }
    return text;
}

std::string handlerText(int signal) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return std::to_string(reinterpret_cast<std::uintptr_t>(action.sa_handler));
}

}  // namespace

ProcessState::ProcessState() {
    std::error_code error;
    parts["the working folder"] = std::filesystem::current_path(error);
    const mode_t mask = umask(0);
    umask(mask);
    parts["the file mode mask"] = std::to_string(mask);
    parts["the environment"] = environmentText();
    parts["the locale"] = std::setlocale(LC_ALL, nullptr);
    for (int signal = 1; signal < NSIG; ++signal) {
        if (const char* const name = sigabbrev_np(signal)) {
            parts[std::string("the handler of SIG") + name] = handlerText(signal);
        }
    }
}

std::string ProcessState::changeSince(const ProcessState& before) const {
    for (const auto& [name, value] : parts) {
        if (before.parts.at(name) != value) {
            return name;
        }
    }
    return "";
}

}  // namespace TevAgent
