#include "Terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace TevTest {

Terminal::Terminal() : user(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (user == -1 || grantpt(user) != 0 || unlockpt(user) != 0) {
        throw std::system_error(errno, std::generic_category(), "posix_openpt");
    }
    name = ptsname(user);
    program = open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (program == -1) {
        throw std::system_error(errno, std::generic_category(), name);
    }
}

Terminal::~Terminal() {
    close(user);
    close(program);
}

void Terminal::type(const std::string& typed) const {
    if (write(user, typed.data(), typed.size()) != static_cast<ssize_t>(typed.size())) {
        throw std::system_error(errno, std::generic_category(), "write");
    }
}

const std::string& Terminal::waitFor(const std::string& expected) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (text.find(expected) == std::string::npos) {
        readMore(1000);
        if (std::chrono::steady_clock::now() > end) {
            throw std::runtime_error("the terminal does not show \"" + expected + "\" but \"" + text + "\"");
        }
    }
    return text;
}

std::string Terminal::take(const std::string& expected) {
    waitFor(expected);
    const std::size_t end = text.find(expected) + expected.size();
    std::string taken = text.substr(0, end);
    text.erase(0, end);
    return taken;
}

const std::string& Terminal::shown() {
    // The kernel hands on later what a program wrote: all of it is here once what is written after it is.
    const char mark = '\x1e';
    if (write(program, &mark, 1) != 1) {
        throw std::system_error(errno, std::generic_category(), name);
    }
    waitFor(std::string(1, mark));
    text.erase(text.find(mark), 1);
    return text;
}

bool Terminal::hasEcho() const {
    termios settings{};
    tcgetattr(program, &settings);
    return (settings.c_lflag & static_cast<tcflag_t>(ECHO)) != 0;
}

void Terminal::setWidth(unsigned short columns) const {
    const winsize size{24, columns, 0, 0};
    ioctl(program, TIOCSWINSZ, &size);
}

void Terminal::readMore(int milliseconds) {
    pollfd output{user, POLLIN, 0};
    if (poll(&output, 1, milliseconds) == 1) {
        std::array<char, 4096> block{};
        const ssize_t count = read(user, block.data(), block.size());
        text.append(block.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
}

}  // namespace TevTest
