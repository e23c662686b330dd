#include "Watchdog.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <chrono>

namespace TevAgent {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr const char* sentence = "it hangs";

TEST(WatchdogTest, endsTheProgramWithItsSentence) {
    const auto hang = [] {
        const Watchdog watchdog(milliseconds(50), sentence);
        while (true) {
            pause();
        }
    };
    const auto begin = Clock::now();
    EXPECT_EXIT(hang(), testing::ExitedWithCode(3), "^tev-agent: it hangs\n$");
    EXPECT_GE(Clock::now() - begin, milliseconds(50));
}

TEST(WatchdogTest, doesNothingOnceWhatItWatchesIsOver) {
    const auto begin = Clock::now();
    { const Watchdog watchdog(std::chrono::hours(1), sentence); }
    EXPECT_LT(Clock::now() - begin, std::chrono::minutes(1));
}

TEST(WatchdogTest, letsTheWorkGoOnWhereThereIsNoThread) {
    const auto workWithoutThreads = [] {
        // No system has room for such a stack.
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, SIZE_MAX / 16 * 15);
        pthread_setattr_default_np(&attributes);
        { const Watchdog watchdog(milliseconds(1), sentence); }
        _exit(17);
    };
    EXPECT_EXIT(workWithoutThreads(), testing::ExitedWithCode(17), "^$");
}

}  // namespace

}  // namespace TevAgent
