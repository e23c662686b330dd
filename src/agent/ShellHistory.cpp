#include "ShellHistory.h"

#include <sys/stat.h>
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

constexpr std::size_t maxBytes = 4U << 20U;  ///< of a file that are read, at its end; lines are far shorter

std::string reasonOf(int error) {
    return std::generic_category().message(error);
}

/// Leaves what is no file, such as /dev/null, as it is. Returns 0, or the system's error number.
int keepFromOthers(int descriptor) {
    struct stat status {};
    const bool isFile = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    return isFile && fchmod(descriptor, 0600) != 0 ? errno : 0;
}

}  // namespace

ShellHistory::ShellHistory() {
    try {
        const std::filesystem::path folder = Tev::StateFolder::path();
        if (folder.empty()) {
            giveUp("there is no folder for it; set TEV_STATE_DIR");
            return;
        }
        file = folder / "history";
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
    return !Text::isBlank(line) && !Text::isBlank(line.substr(0, 1)) && !Text::hasControl(line) && !mayHavePassword;
}

void ShellHistory::add(const std::string& line) {
    if (file.empty()) {
        return;
    }
    const OpenFile opened(file.c_str(), O_WRONLY | O_APPEND | O_CREAT);
    int error = opened.descriptor == -1 ? errno : keepFromOthers(opened.descriptor);
    if (error == 0) {
        error = Descriptor::write(opened.descriptor, line + "\n");
    }
    if (error != 0) {
        giveUp(reasonOf(error));
    }
}

void ShellHistory::read() {
    const OpenFile opened(file.c_str(), O_RDONLY);
    if (opened.descriptor == -1 && errno == ENOENT) {
        return;
    }
    if (opened.descriptor == -1) {
        throw std::system_error(errno, std::generic_category());
    }
    // Fails where all of the file is read.
    const bool isCut = lseek(opened.descriptor, -static_cast<off_t>(maxBytes), SEEK_END) > 0;
    std::string text;
    std::array<char, 65536> block{};
    ssize_t count = 1;
    while (count > 0 && text.size() < maxBytes) {
        count = TEMP_FAILURE_RETRY(::read(opened.descriptor, block.data(), block.size()));
        text.append(block.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    if (count == -1) {
        throw std::system_error(errno, std::generic_category());
    }
    if (isCut) {
        text.erase(0, text.find('\n'));
    }
    for (const std::string_view line : Text::split(text, '\n')) {
        if (!line.empty() && !Text::hasControl(line)) {
            last.emplace_back(line);
        }
    }
    const bool isLong = last.size() > maxLines;
    last.erase(last.begin(), isLong ? last.end() - maxLines : last.begin());
    if (isLong || isCut) {
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
        if (opened.descriptor != -1) {
            unlink(other.c_str());
        }
        throw std::system_error(error, std::generic_category());
    }
}

void ShellHistory::giveUp(const std::string& reason) {
    Diagnostics::say("the history " + (file.empty() ? file : file + " ") + "cannot be kept: " + reason);
    file.clear();
}

}  // namespace TevAgent
