#include "RemoteFile.h"

#include <sys/random.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <system_error>

#include "QuotedText.h"
#include "TevException.h"

namespace Tev {

namespace {

using namespace std::string_view_literals;

// The client's buffer; what a longer line has beyond it would run as a command of its own.
constexpr std::size_t longestCommand = 2047;

std::string randomName() {
    std::uint64_t number = 0;
    if (getrandom(&number, sizeof number, 0) != sizeof number) {
        throw std::system_error(errno, std::generic_category(), "no random bytes");
    }
    char text[32];
    std::snprintf(text, sizeof text, ".tev-%016llx", static_cast<unsigned long long>(number));
    return text;
}

}  // namespace

RemoteFile::RemoteFile(const std::string& path, const std::string& localFile) : target(path) {
    if (path.size() > 1 && path.back() == '/') {
        target += localFile.substr(localFile.rfind('/') + 1);
    }
    const std::size_t nameBegin = target.rfind('/') + 1;
    const std::string name = target.substr(nameBegin);
    if (name.empty() || name == "." || name == "..") {
        throw TevException(TevReturnInvalidArgument, "the remote path names no file");
    }
    if (target.find_first_of("\n\0"sv) != std::string::npos) {
        throw TevException(TevReturnInvalidArgument, "the remote path holds a newline or a null character");
    }
    temporary = target.substr(0, nameBegin) + randomName();
    if (putCommand().size() > longestCommand || renameCommand().size() > longestCommand) {
        throw TevException(TevReturnInvalidArgument, "the remote path is too long for the SFTP client");
    }
}

std::string RemoteFile::putCommand() const {
    return "-put -f -- \"/dev/fd/3\" " + quotedText(temporary);
}

std::string RemoteFile::renameCommand() const {
    return "-rename -- " + quotedText(temporary) + ' ' + quotedText(target);
}

std::string RemoteFile::removeCommand() const {
    return "-rm -- " + quotedText(temporary);
}

}  // namespace Tev
