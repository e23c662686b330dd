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

/// A thread with SIGPIPE as it is by default, whatever the test was started with.
class SigpipeGuardTest : public testing::Test {
protected:
    SigpipeGuardTest() : handlingBefore(std::signal(SIGPIPE, SIG_DFL)) {
        sigemptyset(&sigpipe);
        sigaddset(&sigpipe, SIGPIPE);
        pthread_sigmask(SIG_UNBLOCK, &sigpipe, &maskBefore);
    }

    ~SigpipeGuardTest() override {
        pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
        std::signal(SIGPIPE, handlingBefore);
    }

    sigset_t sigpipe;

private:
    sigset_t maskBefore;
    void (*handlingBefore)(int);
};

TEST_F(SigpipeGuardTest, writeFailsAndNoSignalIsLeft) {
    {
        const Tev::SigpipeGuard guard;
        EXPECT_EQ(writeToNobody(), EPIPE);
    }
    EXPECT_FALSE(isPending());
    EXPECT_FALSE(isBlocked());
}

TEST_F(SigpipeGuardTest, signalThatWasPendingBeforeStaysPending) {
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
}

TEST_F(SigpipeGuardTest, writeThatIsReadIsLeftAlone) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    {
        const Tev::SigpipeGuard guard;
        EXPECT_EQ(write(ends[1], "x", 1), 1);
    }
    char received = 0;
    EXPECT_EQ(read(ends[0], &received, 1), 1);
    EXPECT_EQ(received, 'x');
    EXPECT_FALSE(isBlocked());
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
