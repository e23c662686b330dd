#include "Problem.h"

#include <gtest/gtest.h>

namespace TevAgent {
namespace {

TEST(ProblemTest, textNamesFileLineAndReason) {
    EXPECT_EQ((Problem{"/models/a.xml", 7, "<mom> has no name"}).text(), "/models/a.xml:7: <mom> has no name");
}

TEST(ProblemTest, textWithoutALineNamesFileAndReason) {
    EXPECT_EQ((Problem{"/models/a.xml", 0, "the file is empty"}).text(), "/models/a.xml: the file is empty");
}

TEST(ProblemTest, textIsOneLineWhateverTheFileIsCalled) {
    EXPECT_EQ((Problem{"/models/a\nb\x1b[2J.xml", 0, "the file is empty"}).text(),
              "/models/a\\nb\\x1b[2J.xml: the file is empty");
}

}  // namespace
}  // namespace TevAgent
