#include "KnownHosts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "FileDescriptor.h"
#include "QuotedText.h"
#include "TevException.h"

namespace Tev {

namespace {

namespace fs = std::filesystem;

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

fs::path stateFolder() {
    if (const std::string given = variable("TEV_STATE_DIR"); !given.empty()) {
        return fs::absolute(given);
    }
    if (geteuid() == 0) {
        return "/var/lib/tev";
    }
    if (const std::string base = variable("XDG_STATE_HOME"); fs::path(base).is_absolute()) {
        return fs::path(base) / "tev";
    }
    if (const std::string home = variable("HOME"); fs::path(home).is_absolute()) {
        return fs::path(home) / ".local/state/tev";
    }
    throw TevException("there is no folder to remember host keys in; set TEV_STATE_DIR");
}

/// Makes the folder and those above it that are missing.
void make(const fs::path& folder) {
    fs::path part;
    for (const fs::path& name : folder) {
        part /= name;
        if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) {
            const std::error_code reason(errno, std::generic_category());
            std::error_code ignored;
            if (!fs::is_directory(part, ignored)) {
                throw fs::filesystem_error("mkdir", part, reason);
            }
        }
    }
}

/// Has the system set aside what a line needs behind the file's end, where it can do that: the client does not notice
/// that the disk is full. The file stays as it is, whoever writes to it meanwhile.
void setRoomAside(const FileDescriptor& opened) {
    constexpr off_t room = 4096;
    struct stat status {};
    if (fstat(opened.get(), &status) != 0 ||
        (TEMP_FAILURE_RETRY(fallocate(opened.get(), FALLOC_FL_KEEP_SIZE, status.st_size, room)) != 0 &&
         errno != EOPNOTSUPP)) {
        throw std::system_error(errno, std::generic_category(), "no room");
    }
}

std::string quotedForShell(const std::string& text) {
    std::string result = "'";
    for (const char character : text) {
        result += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return result + '\'';
}

}  // namespace

KnownHosts::KnownHosts() {
    const fs::path folder = stateFolder();
    file = folder / "known_hosts";
    // These have a meaning to the client that nothing takes away.
    if (file.find("${") != std::string::npos || file.find_first_of("\n\r") != std::string::npos) {
        throw TevException("the SFTP client cannot use the state folder's name; set TEV_STATE_DIR");
    }
    try {
        make(folder);
        const FileDescriptor opened(open(file.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, 0600),
                                    "open");
        setRoomAside(opened);
    } catch (const std::system_error& error) {
        throw TevException("%s, where host keys are remembered, cannot be written: %s", file.c_str(),
                           error.code().message().c_str());
    }
}

void KnownHosts::checkKeyIsKept() const {
    struct stat status {};
    if (stat(file.c_str(), &status) != 0 || status.st_size == 0) {
        throw TevException("%s, where host keys are remembered, is empty: the server's key was not written",
                           file.c_str());
    }
}

std::string KnownHosts::option() const {
    std::string value;
    for (const char character : file) {
        value += character == '%' ? std::string("%%") : std::string(1, character);
    }
    return quotedText(value);
}

std::string KnownHosts::forgetCommand(const std::string& host, const std::string& port) const {
    const bool isBracketed = host.front() == '[';
    const std::string name = isBracketed ? host.substr(1, host.size() - 2) : host;
    const bool isDefaultPort = port.empty() || port == "22";
    return "ssh-keygen -R " + quotedForShell(isDefaultPort ? name : '[' + name + "]:" + port) + " -f " +
           quotedForShell(file);
}

}  // namespace Tev
