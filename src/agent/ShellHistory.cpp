#include "ShellHistory.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "Descriptor.h"
#include "Diagnostics.h"
#include "OpenFile.h"
#include "StateFolder.h"
#include "Text.h"

namespace TevAgent {

namespace {

constexpr std::size_t maxBytes = 4U << 20U;  ///< of a file that is read; lines are far shorter

std::string reasonOf(int error) {
    return std::generic_category().message(error);
}

}  // namespace

ShellHistory::ShellHistory() {
    const std::filesystem::path folder = Tev::StateFolder::path();
    if (folder.empty()) {
        giveUp("there is no folder for it; set TEV_STATE_DIR");
        return;
    }
    file = folder / "history";
    try {
        Tev::StateFolder::make(folder);
        read();
    } catch (const std::system_error& e) {
        giveUp(reasonOf(e.code().value()));
    }
}

bool ShellHistory::isKept(const std::string& line) {
    const std::size_t authority = line.find("://");
    const std::size_t colon = authority == std::string::npos ? authority : line.find(':', authority + 3);
    const bool mayHavePassword = colon != std::string::npos && line.find('@', colon) != std::string::npos;
    return !Text::isBlank(line) && !Text::isBlank(line.substr(0, 1)) && !mayHavePassword;
}

void ShellHistory::add(const std::string& line) {
    last.push_back(line);
    if (file.empty()) {
        return;
    }
    const OpenFile opened(file.c_str(), O_WRONLY | O_APPEND | O_CREAT);
    const int error = opened.descriptor == -1 ? errno : Descriptor::write(opened.descriptor, line + "\n");
    if (error != 0) {
        giveUp(reasonOf(error));
    }
}

void ShellHistory::read() {
    const OpenFile opened(file.c_str(), O_RDONLY);
    if (opened.descriptor == -1 && errno == ENOENT) {
        return;
    }
    std::string text;
    std::array<char, 65536> block{};
    ssize_t count = opened.descriptor == -1 ? -1 : 1;
    while (count > 0 && text.size() < maxBytes) {
        count = TEMP_FAILURE_RETRY(::read(opened.descriptor, block.data(), block.size()));
        text.append(block.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    if (count == -1) {
        throw std::system_error(errno, std::generic_category());
    }
    for (const std::string_view line : Text::split(text, '\n')) {
        if (!line.empty() && !Text::hasControl(line)) {
            last.emplace_back(line);
        }
    }
    if (last.size() > maxLines) {
        last.erase(last.begin(), last.end() - maxLines);
        shorten();
    }
}

void ShellHistory::shorten() {
    std::string text;
    for (const std::string& line : last) {
        text += line + "\n";
    }
    // Not in place: whoever ends in the midst of it leaves the old file.
    const std::string other = file + "." + std::to_string(getpid());
    const OpenFile opened(other.c_str(), O_WRONLY | O_CREAT | O_EXCL);
    int error = opened.descriptor == -1 ? errno : Descriptor::write(opened.descriptor, text);
    if (error == 0 && rename(other.c_str(), file.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        unlink(other.c_str());
        throw std::system_error(error, std::generic_category());
    }
}

void ShellHistory::giveUp(const std::string& reason) {
    Diagnostics::say("the history " + (file.empty() ? file : file + " ") + "cannot be kept: " + reason);
    file.clear();
}

}  // namespace TevAgent
