#ifndef TEV_AGENT_WATCHDOG_H
#define TEV_AGENT_WATCHDOG_H

#include <chrono>
#include <future>
#include <string>
#include <thread>

namespace TevAgent {

/// Ends the program when something takes too long that cannot be made to end: after `limit` of this object's life, by
/// the steady clock, the operator reads `sentence`, and the exit status is that of `ExitStatus::BroughtDown`. Where the
/// system gives no thread to wait in, there is no limit.
class Watchdog {
public:
    Watchdog(std::chrono::milliseconds limit, const std::string& sentence) noexcept;
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    std::promise<void> isOver;
    std::thread thread;
};

}  // namespace TevAgent

#endif
