// Whatever a page shows as typed into a console is typed here, and shows the same.

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "ConsoleSession.h"
#include "FileText.h"
#include "MarkdownPage.h"
#include "Pages.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A page that cannot be taken apart counts as one with blocks: its test tells why.
bool hasBlocks(const std::filesystem::path& page) {
    try {
        const std::vector<MarkdownPage::Block> blocks = MarkdownPage(contents(page)).blocks;
        return std::any_of(blocks.begin(), blocks.end(), [](const auto& block) { return block.kind == "console"; });
    } catch (const std::runtime_error&) {
        return true;
    }
}

std::vector<std::filesystem::path> pagesWithBlocks() {
    std::vector<std::filesystem::path> found = pages();
    found.erase(std::remove_if(found.begin(), found.end(), [](const auto& page) { return !hasBlocks(page); }),
                found.end());
    return found;
}

std::string nameOf(const testing::TestParamInfo<std::filesystem::path>& page) {
    std::string name = page.param.stem();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

std::vector<std::string> differencesFrom(const std::string& block) {
    return ConsoleSession().differencesFrom("```console\n" + block + "```\n");
}

class ConsoleBlocksTest : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(ConsoleBlocksTest, showWhatHappens) {
    for (const std::string& difference : ConsoleSession().differencesFrom(contents(GetParam()))) {
        ADD_FAILURE() << GetParam().string() << ", " << difference;
    }
}

INSTANTIATE_TEST_SUITE_P(, ConsoleBlocksTest, testing::ValuesIn(pagesWithBlocks()), nameOf);

TEST(ConsoleSessionTest, acceptsWhatIsShown) {
    EXPECT_THAT(differencesFrom("$ printf 'a\\n\\nb\\n'; echo c >&2\na\n\nb\nc\n\n$ true\n"), IsEmpty());
}

TEST(ConsoleSessionTest, tellsOfAnotherLine) {
    EXPECT_THAT(differencesFrom("$ echo one two\none\n"),
                ElementsAre("line 2: $ echo one two\nshould write\none\nand has written\none two\n"));
}

TEST(ConsoleSessionTest, tellsOfALineTooFewOrTooMany) {
    EXPECT_THAT(differencesFrom("$ echo one\none\ntwo\n$ printf '1\\n2\\n'\n1\n$ echo 3\n"),
                ElementsAre(HasSubstr("line 2"), HasSubstr("line 5"), HasSubstr("line 7")));
}

TEST(ConsoleSessionTest, takesAnEllipsisForAnything) {
    EXPECT_THAT(differencesFrom("$ echo one two three\no…two…\n$ seq 5\n1\n…\n5\n$ seq 2\n1\n…\n2\n…\n"), IsEmpty());
    EXPECT_THAT(differencesFrom("$ echo one two three\no…four…\n$ seq 5\n1\n…\n4\n"),
                ElementsAre(HasSubstr("o…four…"), HasSubstr("…\n4")));
}

TEST(ConsoleSessionTest, tellsOfAFailureThatThePageKeepsQuiet) {
    EXPECT_THAT(differencesFrom("$ false\n$ true\n"),
                ElementsAre("line 2: $ false\nhas the exit status 1\nand has written\n"));
    EXPECT_THAT(differencesFrom("$ (exit 3)\n$ echo $?\n3\n"), IsEmpty());
    EXPECT_THAT(differencesFrom("$ (exit 3)\n$ echo $?\n0\n"),
                ElementsAre(HasSubstr("should write\n0\nand has written\n3")));
}

TEST(ConsoleSessionTest, tellsOfACommandThatEndsTheShell) {
    EXPECT_THAT(differencesFrom("$ exit 0\n$ true\n"),
                ElementsAre(HasSubstr("does not come to an end"), HasSubstr("does not come to an end")));
}

TEST(ConsoleSessionTest, typesCommandsOfSeveralLinesAndBlocksIntoOneShell) {
    EXPECT_THAT(ConsoleSession().differencesFrom("```console\n$ word=\\\nthis\n```\ntext\n```sh\nfalse\n```\n"
                                                 "```console\n$ echo $word\nthis\n```\n"),
                IsEmpty());
}

TEST(ConsoleSessionTest, hasTheProgramsOfThisBuildAndAFolderOfItsOwn) {
    EXPECT_THAT(differencesFrom("$ realpath $(command -v tev-agent) build/release/bin/tev-agent\n" TEV_BUILD
                                "/bin/tev-agent\n" TEV_BUILD "/bin/tev-agent\n$ touch mine && ls\n"
                                "build\nexamples\nmine\nscripts\n"),
                IsEmpty());
}

}  // namespace

}  // namespace TevTest
