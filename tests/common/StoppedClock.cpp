#include "StoppedClock.h"

#include <dlfcn.h>

#include <atomic>
#include <cstdint>
#include <ctime>

namespace {

using ClockGettime = int(clockid_t, timespec*);

constexpr std::int64_t goesOn = -1;
constexpr std::int64_t nanosecondsOfASecond = 1'000'000'000;

std::atomic<std::int64_t> stoppedAt{goesOn};  // nanoseconds
std::atomic<unsigned long> lookCount{0};
thread_local bool isCounted = false;

ClockGettime* systems() {
    static auto* const function = reinterpret_cast<ClockGettime*>(dlsym(RTLD_NEXT, "clock_gettime"));
    return function;
}

}  // namespace

/// Takes the place of the system's function for the program and its libraries.
extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (clock == CLOCK_MONOTONIC && isCounted) {
        ++lookCount;
    }
    // Read after a look is counted, so that each look that is counted after a change sees it.
    const std::int64_t now = stoppedAt;
    if (clock != CLOCK_MONOTONIC || now == goesOn) {
        return systems()(clock, time);
    }
    time->tv_sec = static_cast<std::time_t>(now / nanosecondsOfASecond);
    time->tv_nsec = static_cast<long>(now % nanosecondsOfASecond);
    return 0;
}

namespace TevTest {

StoppedClock::StoppedClock() {
    lookCount = 0;
    isCounted = true;
    stoppedAt = std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

StoppedClock::~StoppedClock() {
    stoppedAt = goesOn;
    isCounted = false;
}

void StoppedClock::moveOn(std::chrono::milliseconds time) {
    stoppedAt += std::chrono::nanoseconds(time).count();
}

unsigned long StoppedClock::looks() const {
    return lookCount;
}

}  // namespace TevTest
