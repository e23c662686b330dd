#include "ShellHistory.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "EnvironmentVariable.h"
#include "FileText.h"
#include "OpenFile.h"
#include "TempFolder.h"

namespace TevAgent {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TevTest::contents;

class ShellHistoryTest : public testing::Test {
protected:
    const TevTest::TempFolder folder;
    const std::string state = folder.path() / "a/b";
    const std::string file = state + "/history";
    const TevTest::EnvironmentVariable variable{"TEV_STATE_DIR", state};
};

TEST_F(ShellHistoryTest, keepsLinesFromOneShellToTheNextForTheirOwnerOnly) {
    ShellHistory first;
    EXPECT_THAT(first.lines(), IsEmpty());
    first.add("list");
    first.add("get é");
    EXPECT_EQ(contents(file), "list\nget é\n");
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    EXPECT_THAT(ShellHistory().lines(), ElementsAre("list", "get é"));
}

TEST_F(ShellHistoryTest, shellsSideBySideKeepEachOthersLines) {
    ShellHistory one;
    ShellHistory other;
    one.add("1");
    other.add("2");
    one.add("3");
    EXPECT_THAT(ShellHistory().lines(), ElementsAre("1", "2", "3"));
}

TEST_F(ShellHistoryTest, keepsTheLastThousandLines) {
    std::string text;
    for (std::size_t i = 0; i < ShellHistory::maxLines + 5; ++i) {
        text += "get " + std::to_string(i) + "\n";
    }
    std::filesystem::create_directories(state);
    folder.write("a/b/history", text);
    const ShellHistory history;
    EXPECT_EQ(history.lines().size(), ShellHistory::maxLines);
    EXPECT_EQ(history.lines().front(), "get 5");
    EXPECT_EQ(contents(file), text.substr(text.find("get 5\n")));
}

TEST_F(ShellHistoryTest, ofAVeryLongFileTheLastLinesAreKept) {
    std::filesystem::create_directories(state);
    folder.write("a/b/history", "get first\n" + std::string(5U << 20U, 'x') + "\nlist\nget last\n");
    EXPECT_THAT(ShellHistory().lines(), ElementsAre("list", "get last"));
    EXPECT_EQ(contents(file), "list\nget last\n");
}

TEST_F(ShellHistoryTest, takesAFileThatOthersCouldReadFromThem) {
    ShellHistory history;
    folder.write("a/b/history", "");
    ASSERT_EQ(chmod(file.c_str(), 0644), 0);
    history.add("list");
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(ShellHistoryTest, leavesWhatIsNoFileOfItsOwnAsItIs) {
    ShellHistory history;
    ASSERT_EQ(mkfifo(file.c_str(), 0644), 0);
    const OpenFile reader(file.c_str(), O_RDONLY | O_NONBLOCK);
    history.add("list");
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0644U);
}

TEST_F(ShellHistoryTest, aShortenedFileOfAnotherShellStays) {
    std::filesystem::create_directories(state);
    const std::string other = file + "." + std::to_string(getpid());
    folder.write("a/b/history", std::string(5U << 20U, '\n'));
    folder.write("a/b/history." + std::to_string(getpid()), "list\n");
    testing::internal::CaptureStderr();
    const ShellHistory history;
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tev-agent: the history " + file + " cannot be kept: File exists\n");
    EXPECT_EQ(contents(other), "list\n");
}

TEST_F(ShellHistoryTest, leavesOutWhatNobodyCanHaveTyped) {
    std::filesystem::create_directories(state);
    folder.write("a/b/history", std::string("list\n\n\x1b[2J\n\0\nget x", 18));
    EXPECT_THAT(ShellHistory().lines(), ElementsAre("list", "get x"));
}

TEST_F(ShellHistoryTest, keepsNoLineThatBeginsWithABlankNorOneThatMayHoldAPasswordNorAControlCharacter) {
    for (const char* kept : {"list", "export --all sftp://u@h:22/p/", "export A sftp://h/p", "get A=b"}) {
        EXPECT_TRUE(ShellHistory::isKept(kept)) << kept;
    }
    for (const char* secret : {"", " list", "\tlist", "a\tb", "a\nb", "a\xc2\x9b", "export A sftp://u:secret@h/p",
                               "export A 'sftp://u:p w@h:22/'"}) {
        EXPECT_FALSE(ShellHistory::isKept(secret)) << secret;
    }
}

TEST_F(ShellHistoryTest, aFileThatCannotBeUsedIsSaidOnceAndNoFailure) {
    std::filesystem::create_directories(file);
    testing::internal::CaptureStderr();
    ShellHistory history;
    history.add("list");
    history.add("list");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tev-agent: the history " + file + " cannot be kept: Is a directory\n");
}

TEST_F(ShellHistoryTest, anEnvironmentThatNamesNoFolderIsSaidAndNoFailure) {
    ASSERT_TRUE(geteuid() != 0 || seteuid(65534) == 0);
    const TevTest::EnvironmentVariable none("TEV_STATE_DIR", {});
    const TevTest::EnvironmentVariable base("XDG_STATE_HOME", {});
    const TevTest::EnvironmentVariable homeless("HOME", {});
    testing::internal::CaptureStderr();
    ShellHistory history;
    history.add("list");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tev-agent: the history cannot be kept: there is no folder for it; set TEV_STATE_DIR\n");
    ASSERT_TRUE(getuid() != 0 || seteuid(0) == 0);
}

TEST_F(ShellHistoryTest, aFolderThatCannotBeNamedIsSaidAndNoFailure) {
    const TevTest::EnvironmentVariable relative("TEV_STATE_DIR", "state");
    const std::filesystem::path before = std::filesystem::current_path();
    const std::string gone = folder.path() / "gone";
    std::filesystem::create_directory(gone);
    std::filesystem::current_path(gone);
    std::filesystem::remove(gone);
    testing::internal::CaptureStderr();
    const ShellHistory history;
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tev-agent: the history cannot be kept: No such file or directory\n");
    std::filesystem::current_path(before);
}

TEST_F(ShellHistoryTest, aFileThatIsLostLaterIsSaidOnce) {
    ShellHistory history;
    std::filesystem::create_directories(file);
    testing::internal::CaptureStderr();
    history.add("list");
    history.add("list");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tev-agent: the history " + file + " cannot be kept: Is a directory\n");
}

}  // namespace

}  // namespace TevAgent
