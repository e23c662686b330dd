#include "FileDescriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace Tev {

namespace {

constexpr int lowest = 10;

}  // namespace

FileDescriptor::FileDescriptor(int opened, const char* what) : descriptor(opened) {
    int error = errno;
    if (descriptor >= 0 && descriptor < lowest) {
        descriptor = fcntl(opened, F_DUPFD_CLOEXEC, lowest);
        error = errno;
        ::close(opened);
    }
    if (descriptor < 0) {
        throw std::system_error(error, std::generic_category(), what);
    }
}

FileDescriptor::~FileDescriptor() {
    close();
}

FileDescriptor::FileDescriptor(FileDescriptor&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
        close();
        descriptor = std::exchange(other.descriptor, -1);
    }
    return *this;
}

void FileDescriptor::close() noexcept {
    if (descriptor >= 0) {
        ::close(std::exchange(descriptor, -1));
    }
}

}  // namespace Tev
