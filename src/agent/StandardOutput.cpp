#include "StandardOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "Descriptor.h"
#include "Failure.h"

namespace TevAgent {

namespace {

bool isOpen(int descriptor) {
    return fcntl(descriptor, F_GETFD) != -1;
}

/// A private copy of standard output, or -1 when there is none.
int takeOver() {
    const bool hasOutput = isOpen(STDOUT_FILENO);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (!isOpen(standard)) {
            // The lowest free number is taken, which is this one.
            static_cast<void>(::open("/dev/null", O_RDWR));
        }
    }
    const int copy = hasOutput ? fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1) : -1;
    dup2(STDERR_FILENO, STDOUT_FILENO);
    return copy;
}

[[noreturn]] void fail(int error) {
    throw Failure(error == EPIPE ? ExitStatus::ReaderGone : ExitStatus::OperationFailed,
                  "cannot write to standard output: " + std::generic_category().message(error));
}

}  // namespace

StandardOutput::StandardOutput() : descriptor(takeOver()) {
    std::signal(SIGPIPE, SIG_IGN);
}

StandardOutput::~StandardOutput() {
    if (descriptor != -1) {
        ::close(descriptor);
    }
}

void StandardOutput::write(std::string_view text) {
    if (const int error = Descriptor::write(descriptor, text); error != 0) {
        fail(error);
    }
}

void StandardOutput::close() {
    if (descriptor != -1 && ::close(std::exchange(descriptor, -1)) != 0) {
        fail(errno);
    }
}

}  // namespace TevAgent
