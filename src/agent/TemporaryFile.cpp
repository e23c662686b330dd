#include "TemporaryFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace TevAgent {

namespace {

constexpr std::size_t mostBytes = 1048576;

// What does not fit is written up to the last page that it fills.
constexpr std::size_t pageBytes = 4096;

}  // namespace

TemporaryFile::TemporaryFile() : file(memfd_create("tev-agent", MFD_CLOEXEC | MFD_ALLOW_SEALING)) {
    // It has its final size from the beginning: so it can be kept from growing, whoever writes.
    if (file == -1 || ftruncate(file, mostBytes) != 0 || fcntl(file, F_ADD_SEALS, F_SEAL_GROW) != 0) {
        const int error = errno;
        close(file);
        throw std::system_error(error, std::generic_category(), "cannot create a file in memory");
    }
}

TemporaryFile::~TemporaryFile() {
    close(file);
}

std::string TemporaryFile::text() const {
    std::string text(size(), '\0');
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(0, pread(file, text.data(), text.size(), 0))));
    return text;
}

bool TemporaryFile::isFull() const {
    return size() + pageBytes > mostBytes;
}

std::size_t TemporaryFile::size() const {
    // Whoever writes shares the place to write at.
    return std::min(mostBytes, static_cast<std::size_t>(lseek(file, 0, SEEK_CUR)));
}

}  // namespace TevAgent
