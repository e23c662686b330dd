#include "Deadline.h"

#include <gtest/gtest.h>

#include <climits>
#include <thread>

namespace {

using Tev::Deadline;

TEST(DeadlineTest, noTimeIsNoDeadline) {
    for (const long long none : {0LL, -1LL, LLONG_MIN}) {
        const Deadline deadline(none);
        EXPECT_FALSE(deadline.hasPassed());
        EXPECT_EQ(deadline.timeLeft(123), 123);
    }
}

TEST(DeadlineTest, longestTimesDoNotOverflow) {
    const Deadline deadline(LLONG_MAX);
    EXPECT_FALSE(deadline.hasPassed());
    EXPECT_EQ(deadline.timeLeft(INT_MAX), INT_MAX);
}

TEST(DeadlineTest, timeLeftEndsWithTheDeadline) {
    const Deadline deadline(30);
    EXPECT_GT(deadline.timeLeft(1000), 0);
    EXPECT_LE(deadline.timeLeft(1000), 30);
    EXPECT_LE(deadline.timeLeft(5), 5);
    while (!deadline.hasPassed()) {
        EXPECT_GE(deadline.timeLeft(1000), 0);
        std::this_thread::yield();
    }
    EXPECT_EQ(deadline.timeLeft(1000), 0);
}

TEST(DeadlineTest, laterMoment) {
    const int left = Deadline(1000).later(500).timeLeft(INT_MAX);
    EXPECT_GT(left, 1000);
    EXPECT_LE(left, 1500);
    EXPECT_EQ(Deadline(0).later(500).timeLeft(INT_MAX), INT_MAX);
}

TEST(DeadlineTest, earlierOfTwo) {
    EXPECT_LE(Deadline::earlier(Deadline(1000), Deadline(0)).timeLeft(INT_MAX), 1000);
    EXPECT_LE(Deadline::earlier(Deadline(0), Deadline(1000)).timeLeft(INT_MAX), 1000);
}

}  // namespace
