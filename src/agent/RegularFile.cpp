#include "RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "FileError.h"

namespace TevAgent {

namespace {

std::string textOf(int error) {
    return std::generic_category().message(error);
}

[[noreturn]] void failToOpen(const std::filesystem::path& path, int error) {
    std::error_code ignored;
    if (error == ENOENT && std::filesystem::is_symlink(path, ignored)) {
        throw FileError(0, "a link to a file that does not exist");
    }
    throw FileError(0, "cannot be opened: " + textOf(error));
}

void requireRegular(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        throw FileError(0, "cannot be examined: " + textOf(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        throw FileError(0, "a folder, not a file");
    }
    if (!S_ISREG(status.st_mode)) {
        throw FileError(0, "not a regular file");
    }
}

}  // namespace

// Opening a fifo for reading would wait for its writer.
RegularFile::RegularFile(const std::filesystem::path& path) : file(path.c_str(), O_RDONLY | O_NONBLOCK) {
    if (file.descriptor < 0) {
        failToOpen(path, errno);
    }
    requireRegular(file.descriptor);
}

std::size_t RegularFile::read(char* buffer, std::size_t size) {
    ssize_t count = 0;
    do {
        count = ::read(file.descriptor, buffer, size);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
        throw FileError(0, "cannot be read: " + textOf(errno));
    }
    return static_cast<std::size_t>(count);
}

}  // namespace TevAgent
