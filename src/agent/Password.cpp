#include "Password.h"

#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "Descriptor.h"
#include "Failure.h"
#include "Interruption.h"
#include "OpenFile.h"

namespace TevAgent {

namespace {

[[noreturn]] void refuse(const std::string& reason) {
    throw Failure(ExitStatus::WrongUsage, reason);
}

/// Keeps what is typed from being shown, and the keys that stop or end a program from doing so: a shell turns the echo
/// on when a program has stopped, and nobody does when it has ended. The interrupt key ends the asking in good order.
class NoEcho {
public:
    explicit NoEcho(int terminalDescriptor) : terminal(terminalDescriptor) {
        tcgetattr(terminal, &before);
        termios silent = before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        silent.c_lflag |= ECHONL;
        silent.c_cc[VSUSP] = _POSIX_VDISABLE;
        silent.c_cc[VQUIT] = _POSIX_VDISABLE;
        tcsetattr(terminal, TCSAFLUSH, &silent);
    }
    ~NoEcho() { tcsetattr(terminal, TCSAFLUSH, &before); }
    NoEcho(const NoEcho&) = delete;
    NoEcho& operator=(const NoEcho&) = delete;

private:
    const int terminal;
    termios before{};
};

}  // namespace

Password Password::ask(const std::string& account) {
    const OpenFile terminal("/dev/tty", O_RDWR);
    if (terminal.descriptor == -1) {
        refuse("there is no terminal to ask for the password on; give it with --password-stdin or --password-file");
    }
    const NoEcho noEcho(terminal.descriptor);
    Descriptor::write(terminal.descriptor, (account.empty() ? "Password" : "Password of " + account) + ": ");
    try {
        return Password(terminal.descriptor, "the terminal");
    } catch (const Interrupted&) {
        Descriptor::write(terminal.descriptor, "\n");
        throw;
    }
}

Password Password::fromInput() {
    return Password(STDIN_FILENO, "standard input");
}

Password Password::fromFile(const std::string& file) {
    // A named pipe is not waited for here, where an interrupt might come too early, but before the reading.
    const OpenFile opened(file.c_str(), O_RDONLY | O_NONBLOCK);
    if (opened.descriptor == -1) {
        throw Failure(ExitStatus::NotStarted, "the file of --password-file, " + file +
                                                  ", cannot be used: " + std::generic_category().message(errno));
    }
    return Password(opened.descriptor, file);
}

Password::Password(int descriptor, const std::string& source) {
    try {
        read(descriptor, source);
    } catch (...) {
        explicit_bzero(line.data(), line.size());
        throw;
    }
}

Password::~Password() {
    explicit_bzero(line.data(), line.size());
}

void Password::read(int descriptor, const std::string& source) {
    for (std::size_t size = 0; size < line.size();) {
        const ssize_t count = Interruption::readByte(descriptor, line[size]);
        if (count == -1) {
            throw Failure(ExitStatus::NotStarted,
                          "cannot read the password from " + source + ": " + std::generic_category().message(errno));
        }
        if (count == 0 && size == 0) {
            refuse(source + " gives no password; it is the first line");
        }
        if (count == 0 || line[size] == '\n') {
            line[size] = '\0';
            return;
        }
        if (line[size++] == '\0') {
            refuse("the password from " + source + " holds a null byte");
        }
    }
    refuse("the password from " + source + " is longer than " + std::to_string(maxBytes) + " bytes");
}

}  // namespace TevAgent
