#include "LineEditor.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <clocale>
#include <future>
#include <stdexcept>

#include "EnvironmentVariable.h"
#include "TempFolder.h"
#include "Terminal.h"

namespace TevAgent {

namespace {

using testing::ElementsAre;
using TevTest::EnvironmentVariable;

/// The test has a terminal as its standard input and standard error.
class LineEditorTest : public testing::Test {
protected:
    LineEditorTest() {
        dup2(terminal.descriptor(), STDIN_FILENO);
        dup2(terminal.descriptor(), STDERR_FILENO);
    }
    ~LineEditorTest() override {
        dup2(error, STDERR_FILENO);
        close(error);
    }

    const TevTest::TempFolder folder;
    const EnvironmentVariable state{"TEV_STATE_DIR", folder.path()};
    const EnvironmentVariable type{"TERM", "xterm"};
    const EnvironmentVariable locale{"LC_ALL", "C.UTF-8"};
    TevTest::Terminal terminal;
    const int error = dup(STDERR_FILENO);
};

// Components compare names in the locale of the process.
TEST_F(LineEditorTest, readsUtf8AndLeavesTheLocaleOfTheProcessAsItIs) {
    std::vector<std::string> seen;
    std::string completed;
    LineEditor editor([&](const auto&, const std::string& begun) {
        seen = {std::setlocale(LC_ALL, nullptr), std::to_string(MB_CUR_MAX)};
        completed = begun;
        return std::vector<std::string>{begun + "-中文"};
    });
    auto line = std::async(std::launch::async, [&] { return editor.next(); });
    terminal.waitFor("tev> ");
    // One character is taken back as a whole.
    terminal.type("get \xc3\xa9\xe4\xb8\xad\x7f\t\n");
    EXPECT_EQ(line.get()->text, "get é-中文 ");
    EXPECT_EQ(completed, "é");
    EXPECT_THAT(seen, ElementsAre("C", "1"));
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

TEST_F(LineEditorTest, takesNoByteThatIsNotUtf8) {
    LineEditor editor([](const auto&, const auto&) { return std::vector<std::string>(); });
    auto line = std::async(std::launch::async, [&] { return editor.next(); });
    terminal.waitFor("tev> ");
    terminal.type(std::string("li\xff\0st\n", 7));
    EXPECT_EQ(line.get()->text, "list");
}

TEST_F(LineEditorTest, theTerminalIsItsOwnAgainWhileCandidatesAreSought) {
    bool hasEcho = false;
    LineEditor editor([&](const auto&, const auto&) -> std::vector<std::string> {
        hasEcho = terminal.hasEcho();
        throw std::runtime_error("no candidates");
    });
    auto line = std::async(std::launch::async, [&] { return editor.next(); });
    terminal.waitFor("tev> ");
    EXPECT_FALSE(terminal.hasEcho());
    terminal.type("li\tst\n");
    EXPECT_EQ(line.get()->text, "list");
    EXPECT_TRUE(hasEcho);
    EXPECT_TRUE(terminal.hasEcho());
}

TEST_F(LineEditorTest, leavesOutCandidatesThatCannotBeTyped) {
    std::vector<std::string> found = {"a", "a\x80"};
    LineEditor editor([&](const auto&, const auto&) { return found; });
    auto line = std::async(std::launch::async, [&] { return editor.next(); });
    terminal.waitFor("tev> ");
    terminal.type("a\t\n");
    EXPECT_EQ(line.get()->text, "a ");
    found = {"a\nb"};
    line = std::async(std::launch::async, [&] { return editor.next(); });
    terminal.type("a\t\n");
    EXPECT_EQ(line.get()->text, "a");
}

TEST_F(LineEditorTest, candidatesThatDoNotBeginWithTheWordDoNoHarm) {
    LineEditor editor([](const auto&, const auto&) { return std::vector<std::string>{"l"}; });
    auto line = std::async(std::launch::async, [&] { return editor.next(); });
    terminal.waitFor("tev> ");
    terminal.type("li\tst\n");
    EXPECT_EQ(line.get()->text, "list");
}

TEST_F(LineEditorTest, aLastLineWithoutANewlineIsWhole) {
    const EnvironmentVariable unedited("TERM", "emacs");
    LineEditor editor([](const auto&, const auto&) { return std::vector<std::string>(); });
    auto line = std::async(std::launch::async, [&] { return editor.next(); });
    terminal.waitFor("tev> ");
    terminal.type("list\x04\x04");
    EXPECT_EQ(line.get()->text, "list");
}

}  // namespace

}  // namespace TevAgent
