#ifndef STOPPED_CLOCK_H
#define STOPPED_CLOCK_H

#include <chrono>

namespace TevTest {

/// Stops the steady clock of the program and its libraries while it lives; other processes, and how long a call waits
/// in the kernel, are not concerned. There is one at a time.
class StoppedClock {
public:
    StoppedClock();
    ~StoppedClock();
    StoppedClock(const StoppedClock&) = delete;
    StoppedClock& operator=(const StoppedClock&) = delete;

    /// From any thread.
    void moveOn(std::chrono::milliseconds time);

    /// How often the thread that stopped the clock has looked at it since. From any thread.
    unsigned long looks() const;
};

}  // namespace TevTest

#endif
