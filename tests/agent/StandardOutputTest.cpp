#include "StandardOutput.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <iostream>
#include <string>

#include "Failure.h"

namespace TevAgent {

namespace {

/// Taking standard output over is for good, so every test does it in a process of its own, which ends with status 0 and
/// tells what it found on standard error.
template <class Function>
void found(Function&& function) {
    try {
        std::cerr << function() << std::endl;
    } catch (const Failure& e) {
        std::cerr << e.what() << std::endl;
    }
    std::_Exit(0);
}

int openNow() {
    const int lowest = open("/dev/null", O_RDONLY);
    close(lowest);
    return lowest;
}

/// SIGPIPE as a program finds it, whatever the test was started with and its libraries have blocked.
void letPipesKill() {
    std::signal(SIGPIPE, SIG_DFL);
    sigset_t pipes;
    sigemptyset(&pipes);
    sigaddset(&pipes, SIGPIPE);
    sigprocmask(SIG_UNBLOCK, &pipes, nullptr);
}

TEST(StandardOutputDeathTest, whatIsPrintedGoesToStandardErrorFromThenOn) {
    EXPECT_EXIT(found([] {
                    const StandardOutput output;
                    std::cout << "printed, ";
                    std::cout.flush();
                    return "found";
                }),
                testing::ExitedWithCode(0), "printed, found");
}

TEST(StandardOutputDeathTest, thePrivateDescriptorIsNotInherited) {
    EXPECT_EXIT(found([] {
                    const int expected = openNow();
                    const StandardOutput output;
                    return (fcntl(expected, F_GETFD) & FD_CLOEXEC) != 0 ? "private" : "inherited";
                }),
                testing::ExitedWithCode(0), "private");
}

TEST(StandardOutputDeathTest, aClosedStandardOutputIsAnErrorOnceSomethingIsWritten) {
    EXPECT_EXIT(found([] {
                    close(STDOUT_FILENO);
                    StandardOutput output;
                    output.write("");
                    output.close();
                    output.write("result");
                    return "written";
                }),
                testing::ExitedWithCode(0), "cannot write to standard output: Bad file descriptor");
}

TEST(StandardOutputDeathTest, noFileTakesThePlaceOfAClosedStandardDescriptor) {
    EXPECT_EXIT(found([] {
                    close(STDIN_FILENO);
                    close(STDOUT_FILENO);
                    const StandardOutput output;
                    return openNow() > STDERR_FILENO ? "well above" : "in their place";
                }),
                testing::ExitedWithCode(0), "well above");
}

TEST(StandardOutputDeathTest, aReaderWhoHasGoneIsAFailureAndNoSignal) {
    EXPECT_EXIT(found([] {
                    int ends[2];
                    if (pipe(ends) != 0) {
                        return "no pipe";
                    }
                    dup2(ends[1], STDOUT_FILENO);
                    close(ends[0]);
                    letPipesKill();
                    StandardOutput output;
                    output.write("result");
                    return "written";
                }),
                testing::ExitedWithCode(0), "cannot write to standard output: Broken pipe");
}

TEST(StandardOutputDeathTest, anErrorThatShowsOnlyAtTheEndIsToldToo) {
    EXPECT_EXIT(found([] {
                    const int expected = openNow();
                    StandardOutput output;
                    close(expected);
                    output.close();
                    return "closed well";
                }),
                testing::ExitedWithCode(0), "cannot write to standard output: Bad file descriptor");
}

TEST(StandardOutputDeathTest, writesLongTextsWhole) {
    EXPECT_EXIT(found([] {
                    int ends[2];
                    if (pipe(ends) != 0) {
                        return std::string("no pipe");
                    }
                    dup2(ends[1], STDOUT_FILENO);
                    close(ends[1]);
                    const pid_t reader = fork();
                    if (reader == 0) {
                        std::size_t size = 0;
                        char block[4096];
                        close(STDOUT_FILENO);
                        for (ssize_t count = 1; count > 0; size += static_cast<std::size_t>(count)) {
                            count = read(ends[0], block, sizeof block);
                        }
                        std::fprintf(stderr, "read %zu ", size);
                        std::_Exit(0);
                    }
                    {
                        StandardOutput output;
                        output.write(std::string(1000000, 'x'));
                        output.close();
                    }
                    close(STDOUT_FILENO);
                    waitpid(reader, nullptr, 0);
                    return std::string("in the end");
                }),
                testing::ExitedWithCode(0), "read 1000000 in the end");
}

}  // namespace

}  // namespace TevAgent
