#include "TemporaryFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace TevAgent {

namespace {

constexpr std::size_t mostBytes = 1048576;

}  // namespace

TemporaryFile::TemporaryFile() : file(memfd_create("tev-agent", MFD_CLOEXEC)) {
    if (file == -1) {
        throw std::system_error(errno, std::generic_category(), "cannot create a file in memory");
    }
}

TemporaryFile::~TemporaryFile() {
    close(file);
}

std::string TemporaryFile::text() const {
    std::string text(mostBytes, '\0');
    const ssize_t size = pread(file, text.data(), text.size(), 0);
    text.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return text;
}

}  // namespace TevAgent
