#include "KnownHosts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "FileDescriptor.h"
#include "QuotedText.h"
#include "StateFolder.h"
#include "TevException.h"

namespace Tev {

namespace {

namespace fs = std::filesystem;

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
    const fs::path folder = StateFolder::path();
    if (folder.empty()) {
        throw TevException("there is no folder to remember host keys in; set TEV_STATE_DIR");
    }
    file = folder / "known_hosts";
    // These have a meaning to the client that nothing takes away.
    if (file.find("${") != std::string::npos || file.find_first_of("\n\r") != std::string::npos) {
        throw TevException("the SFTP client cannot use the state folder's name; set TEV_STATE_DIR");
    }
    try {
        StateFolder::make(folder);
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
