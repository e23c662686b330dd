#include "Screen.h"

#include <gmock/gmock.h>

#include "EnvironmentVariable.h"
#include "Pipe.h"
#include "Terminal.h"

namespace TevAgent {

namespace {

using TevTest::EnvironmentVariable;

class ScreenTest : public testing::Test {
protected:
    Screen screen() const { return Screen::of(terminal.descriptor()); }

    const TevTest::Terminal terminal;
    const EnvironmentVariable columns{"COLUMNS", std::nullopt};
    const EnvironmentVariable noColor{"NO_COLOR", std::nullopt};
    const EnvironmentVariable type{"TERM", "xterm"};
};

TEST_F(ScreenTest, isAsWideAsTheTerminal) {
    terminal.setWidth(123);
    EXPECT_EQ(screen().width, 123U);
    terminal.setWidth(40);
    EXPECT_EQ(screen().width, 40U);
}

TEST_F(ScreenTest, has80ColumnsWhereTheTerminalDoesNotTell) {
    terminal.setWidth(0);
    EXPECT_EQ(screen().width, 80U);
}

TEST_F(ScreenTest, isAsWideAsColumnsSaysWhereThatIsANumber) {
    terminal.setWidth(123);
    const EnvironmentVariable wide("COLUMNS", "200");
    EXPECT_EQ(screen().width, 200U);
    EXPECT_EQ(Screen::columnsOf(terminal.descriptor()), 123U);
    for (const char* noNumber : {"", "0", "wide", "50x", "-50", " 50", "99999999999999999999999"}) {
        const EnvironmentVariable other("COLUMNS", noNumber);
        EXPECT_EQ(screen().width, 123U) << noNumber;
    }
}

TEST_F(ScreenTest, hasColoursOnATerminalOnly) {
    EXPECT_TRUE(screen().hasColours);
    const EnvironmentVariable wide("COLUMNS", "200");
    const TevTest::Pipe pipe(0);
    for (const int descriptor : {pipe.writing(), -1}) {
        EXPECT_FALSE(Screen::of(descriptor).hasColours);
        EXPECT_EQ(Screen::of(descriptor).width, 0U);
    }
}

TEST_F(ScreenTest, hasNoColoursOnceNoColorIsSetToAnything) {
    for (const char* anything : {"1", "0", "false"}) {
        const EnvironmentVariable set("NO_COLOR", anything);
        EXPECT_FALSE(screen().hasColours);
    }
    const EnvironmentVariable empty("NO_COLOR", "");
    EXPECT_TRUE(screen().hasColours);
}

TEST_F(ScreenTest, hasNoColoursOnATerminalThatIsDumbOrOfNoType) {
    for (const std::optional<std::string>& plain : {std::optional<std::string>("dumb"), {""}, {std::nullopt}}) {
        const EnvironmentVariable set("TERM", plain);
        EXPECT_FALSE(screen().hasColours);
    }
}

TEST_F(ScreenTest, emphasisesWithColoursOnly) {
    EXPECT_EQ((Screen{0, true}.emphasised(Screen::Emphasis::Title, "a")), "\x1b[1ma\x1b[0m");
    EXPECT_EQ((Screen{0, true}.emphasised(Screen::Emphasis::Good, "a")), "\x1b[32ma\x1b[0m");
    EXPECT_EQ((Screen{0, true}.emphasised(Screen::Emphasis::Bad, "a")), "\x1b[31ma\x1b[0m");
    EXPECT_EQ((Screen{80, false}.emphasised(Screen::Emphasis::Bad, "a")), "a");
}

}  // namespace

}  // namespace TevAgent
