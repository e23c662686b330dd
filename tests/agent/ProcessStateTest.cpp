#include "ProcessState.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>

namespace {

using TevAgent::ProcessState;

TEST(ProcessStateTest, nothingHasChangedByItself) {
    const ProcessState before;
    EXPECT_EQ(ProcessState().changeSince(before), "");
}

TEST(ProcessStateTest, namesWhatHasChanged) {
    const ProcessState before;
    std::signal(SIGUSR1, [](int) {});
    EXPECT_EQ(ProcessState().changeSince(before), "the handler of SIGUSR1");
    const ProcessState handled;
    ASSERT_EQ(chdir("/"), 0);
    EXPECT_EQ(ProcessState().changeSince(handled), "the working folder");
    const ProcessState moved;
    umask(0123);
    EXPECT_EQ(ProcessState().changeSince(moved), "the file mode mask");
    const ProcessState masked;
    ASSERT_EQ(setenv("TEV_SOMETHING", "new", 1), 0);
    EXPECT_EQ(ProcessState().changeSince(masked), "the environment");
    const ProcessState set;
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    EXPECT_EQ(ProcessState().changeSince(set), "the locale");
}

}  // namespace
