#include "Diagnostics.h"

#include <gmock/gmock.h>

#include <thread>

namespace TevAgent {

namespace {

template <class Function>
std::string onStandardError(Function&& function) {
    testing::internal::CaptureStderr();
    function();
    return testing::internal::GetCapturedStderr();
}

TEST(DiagnosticsTest, saysASentenceOnStandardErrorAfterTheProgramsName) {
    EXPECT_EQ(onStandardError([] { Diagnostics::say("it broke"); }), "tev-agent: it broke\n");
}

TEST(DiagnosticsTest, writesControlCharactersAsEscapesSoOneSentenceIsOneLine) {
    EXPECT_EQ(onStandardError([] { Diagnostics::say("a\nb\x1b[2J"); }), "tev-agent: a\\nb\\x1b[2J\n");
}

// Some terminals take the byte 0x9b for an escape and a bracket.
TEST(DiagnosticsTest, writesNoByteThatIsNotUtf8) {
    EXPECT_EQ(onStandardError([] { Diagnostics::say("\x9bm"); }), "tev-agent: \xef\xbf\xbdm\n");
}

TEST(DiagnosticsTest, namesTheLineOfAScriptThatASentenceIsAboutWhoeverSaysIt) {
    EXPECT_EQ(onStandardError([] {
                  {
                      const Diagnostics::ScriptLine line(3);
                      Diagnostics::say("one");
                      std::thread([] { Diagnostics::say("two"); }).join();
                  }
                  Diagnostics::say("three");
              }),
              "tev-agent: line 3: one\ntev-agent: line 3: two\ntev-agent: three\n");
}

TEST(DiagnosticsTest, aCaptureKeepsWhatIsSaid) {
    std::string taken;
    EXPECT_EQ(onStandardError([&] {
                  Diagnostics::Capture capture;
                  EXPECT_TRUE(capture.isEmpty());
                  Diagnostics::say("one");
                  Diagnostics::say("two");
                  EXPECT_FALSE(capture.isEmpty());
                  taken = capture.takeOr("none");
              }),
              "");
    EXPECT_EQ(taken, "one; two");
}

TEST(DiagnosticsTest, aCaptureThatHeardNothingGivesTheOtherText) {
    Diagnostics::Capture capture;
    EXPECT_EQ(capture.takeOr("none"), "none");
}

TEST(DiagnosticsTest, whatNobodyTookIsSaidWhenTheCaptureEnds) {
    EXPECT_EQ(onStandardError([] {
                  const Diagnostics::Capture capture;
                  Diagnostics::say("one");
                  Diagnostics::say("two");
              }),
              "tev-agent: one\ntev-agent: two\n");
}

TEST(DiagnosticsTest, anInnerCapturePassesTheRestToTheOuterOne) {
    Diagnostics::Capture outer;
    {
        const Diagnostics::Capture inner;
        Diagnostics::say("one");
        EXPECT_TRUE(outer.isEmpty());
    }
    EXPECT_EQ(outer.takeOr(""), "one");
}

TEST(DiagnosticsTest, aCaptureHearsItsOwnThreadOnly) {
    Diagnostics::Capture capture;
    EXPECT_EQ(onStandardError([] { std::thread([] { Diagnostics::say("elsewhere"); }).join(); }),
              "tev-agent: elsewhere\n");
    EXPECT_TRUE(capture.isEmpty());
}

}  // namespace

}  // namespace TevAgent
