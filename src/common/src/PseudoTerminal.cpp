#include "PseudoTerminal.h"

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>

#include <cerrno>
#include <system_error>

namespace Tev {

PseudoTerminal::PseudoTerminal()
    : master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK), "no pseudo terminal") {
    char name[64];
    termios mode{};
    if (grantpt(master.get()) != 0 || unlockpt(master.get()) != 0 || tcgetattr(master.get(), &mode) != 0) {
        throw std::system_error(errno, std::generic_category(), "no pseudo terminal");
    }
    cfmakeraw(&mode);
    if (tcsetattr(master.get(), TCSANOW, &mode) != 0 || (errno = ptsname_r(master.get(), name, sizeof name)) != 0) {
        throw std::system_error(errno, std::generic_category(), "no pseudo terminal");
    }
    path = name;
}

}  // namespace Tev
