#include "Descriptor.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace TevAgent {

int Descriptor::write(int descriptor, std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            pollfd full{descriptor, POLLOUT, 0};
            poll(&full, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

}  // namespace TevAgent
