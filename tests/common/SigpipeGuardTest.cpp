#include "SigpipeGuard.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

namespace {

/// Writes to a pipe that nobody reads; returns the error.
int writeToNobody() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return errno;
    }
    close(ends[0]);
    const int error = write(ends[1], "x", 1) < 0 ? errno : 0;
    close(ends[1]);
    return error;
}

bool isPending() {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

bool isBlocked() {
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, SIGPIPE) == 1;
}

TEST(SigpipeGuardTest, writeFailsAndNoSignalIsLeft) {
    {
        const Tev::SigpipeGuard guard;
        EXPECT_EQ(writeToNobody(), EPIPE);
    }
    EXPECT_FALSE(isPending());
    EXPECT_FALSE(isBlocked());
}

TEST(SigpipeGuardTest, signalThatWasPendingBeforeStaysPending) {
    sigset_t sigpipe;
    sigemptyset(&sigpipe);
    sigaddset(&sigpipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &sigpipe, nullptr);
    EXPECT_EQ(writeToNobody(), EPIPE);
    ASSERT_TRUE(isPending());
    {
        const Tev::SigpipeGuard guard;
        EXPECT_EQ(writeToNobody(), EPIPE);
    }
    EXPECT_TRUE(isPending());
    EXPECT_TRUE(isBlocked());
    const timespec noTime{};
    EXPECT_EQ(sigtimedwait(&sigpipe, nullptr, &noTime), SIGPIPE);
    pthread_sigmask(SIG_UNBLOCK, &sigpipe, nullptr);
}

TEST(SigpipeGuardTest, doesNothingToAWriteThatIsRead) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    {
        const Tev::SigpipeGuard guard;
        EXPECT_EQ(write(ends[1], "x", 1), 1);
    }
    char read1 = 0;
    EXPECT_EQ(read(ends[0], &read1, 1), 1);
    EXPECT_EQ(read1, 'x');
    EXPECT_FALSE(isBlocked());
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
