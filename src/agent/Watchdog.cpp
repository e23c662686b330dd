#include "Watchdog.h"

#include <unistd.h>

#include <exception>

#include "Diagnostics.h"
#include "ExitStatus.h"

namespace TevAgent {

Watchdog::Watchdog(std::chrono::milliseconds limit, const std::string& sentence) noexcept {
    try {
        thread = std::thread([over = isOver.get_future(), limit, sentence] {
            if (over.wait_for(limit) == std::future_status::timeout) {
                Diagnostics::say(sentence);
                // What `exit` runs might wait for the thread that hangs.
                _exit(static_cast<int>(ExitStatus::BroughtDown));
            }
        });
    } catch (const std::exception&) {
        // What is watched has to be done all the same.
    }
}

Watchdog::~Watchdog() {
    if (thread.joinable()) {
        isOver.set_value();
        thread.join();
    }
}

}  // namespace TevAgent
