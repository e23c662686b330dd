#include "ProcessUtil.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "EnvironmentVariable.h"
#include "TempFolder.h"

namespace {

using Tev::ProcessUtil::getComponentCfgPath;
using TevTest::EnvironmentVariable;
using TevTest::TempFolder;

constexpr char folderVariable[] = "TEV_CONFIG_DIR";
constexpr char fileName[] = "tev-process-util-test.cfg";
constexpr char systemFile[] = "/etc/tev/tev-process-util-test.cfg";

/// What a search gives: the path, or the code as text when it is not 0.
std::string search(const std::string& name) {
    std::string path = "left over";
    const TevReturnT code = getComponentCfgPath(name, path);
    return code == 0 ? path : std::to_string(code) + path;
}

TEST(ProcessUtilTest, findsTheFileInTheConfiguredFolder) {
    const TempFolder folder;
    const std::string file = folder.write(fileName, "");
    const EnvironmentVariable variable(folderVariable, folder.path().string());
    EXPECT_EQ(search(fileName), file);
}

TEST(ProcessUtilTest, missingFileGivesMinusTwoAndAnEmptyPath) {
    const TempFolder folder;
    const EnvironmentVariable variable(folderVariable, folder.path().string());
    EXPECT_EQ(search(fileName), "-2");
}

TEST(ProcessUtilTest, onlyARegularFileCounts) {
    const TempFolder folder;
    const EnvironmentVariable variable(folderVariable, folder.path().string());
    std::filesystem::create_directory(folder.path() / "folder.cfg");
    ASSERT_EQ(mkfifo((folder.path() / "pipe.cfg").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/null", folder.path() / "device.cfg");
    std::filesystem::create_symlink("nowhere", folder.path() / "dangling.cfg");
    for (const char* const name : {"folder.cfg", "pipe.cfg", "device.cfg", "dangling.cfg", ".", ".."}) {
        EXPECT_EQ(search(name), "-2") << name;
    }
}

TEST(ProcessUtilTest, linkToARegularFileCounts) {
    const TempFolder folder;
    const EnvironmentVariable variable(folderVariable, folder.path().string());
    folder.write("real.cfg", "");
    std::filesystem::create_symlink("real.cfg", folder.path() / "link.cfg");
    EXPECT_EQ(search("link.cfg"), folder.path() / "link.cfg");
}

TEST(ProcessUtilTest, emptyNameAndNameWithSlashOrNulAreNotFound) {
    const TempFolder folder;
    std::filesystem::create_directory(folder.path() / "inner");
    folder.write("inner/file.cfg", "");
    folder.write("plain.cfg", "");
    const EnvironmentVariable variable(folderVariable, (folder.path() / "inner").string());
    ASSERT_EQ(search("file.cfg"), folder.path() / "inner/file.cfg");
    EXPECT_EQ(search(""), "-2");
    EXPECT_EQ(search("../plain.cfg"), "-2");
    EXPECT_EQ(search("./file.cfg"), "-2");
    EXPECT_EQ(search(std::string("file.cfg\0x", 10)), "-2");
}

TEST(ProcessUtilTest, nameMayBeTheResultsOwnText) {
    const TempFolder folder;
    const std::string file = folder.write(fileName, "");
    const EnvironmentVariable variable(folderVariable, folder.path().string());
    std::string path = fileName;
    EXPECT_EQ(getComponentCfgPath(path, path), 0);
    EXPECT_EQ(path, file);
}

/// Ends the child with a message that the test shows.
[[noreturn]] void giveUp(const char* what) {
    std::fprintf(stderr, "%s: %s\n", what, std::strerror(errno));
    _exit(1);
}

/// Makes `folder` the root folder of the process.
void enterRoot(const TempFolder& folder) {
    const char* const path = folder.path().c_str();
    // Without being root, that takes a user namespace.
    if (chroot(path) != 0 && (unshare(CLONE_NEWUSER) != 0 || chroot(path) != 0)) {
        giveUp("no root folder");
    }
}

/// Ends the child: with 0 when the search gives `expected`.
[[noreturn]] void expectFound(const std::string& expected) {
    const std::string found = search(fileName);
    std::fprintf(stderr, "found: %s\n", found.c_str());
    _exit(found == expected ? 0 : 1);
}

/// A root folder of the test's own, with the file in the system folder.
class ProcessUtilSystemFolderTest : public testing::Test {
protected:
    ProcessUtilSystemFolderTest() {
        std::filesystem::create_directories(root.path() / "etc/tev");
        root.write(systemFile + 1, "");
        std::filesystem::create_directory(root.path() / "configured");
    }

    const TempFolder root;
};

TEST_F(ProcessUtilSystemFolderTest, isSearchedWhenNoFolderIsConfigured) {
    const EnvironmentVariable variable(folderVariable, std::nullopt);
    EXPECT_EXIT((enterRoot(root), expectFound(systemFile)), testing::ExitedWithCode(0), "found");
}

TEST_F(ProcessUtilSystemFolderTest, isSearchedWhenTheConfiguredOneLacksTheFile) {
    std::filesystem::create_directory(root.path() / "configured" / fileName);
    const EnvironmentVariable variable(folderVariable, "/configured");
    EXPECT_EXIT((enterRoot(root), expectFound(systemFile)), testing::ExitedWithCode(0), "found");
}

TEST_F(ProcessUtilSystemFolderTest, isSearchedAfterTheConfiguredOne) {
    root.write(std::string("configured/") + fileName, "");
    const EnvironmentVariable variable(folderVariable, "/configured");
    EXPECT_EXIT((enterRoot(root), expectFound(std::string("/configured/") + fileName)), testing::ExitedWithCode(0),
                "found");
}

TEST_F(ProcessUtilSystemFolderTest, isSearchedInsteadOfTheRootFolderWhenTheConfiguredNameIsEmpty) {
    root.write(fileName, "");
    const EnvironmentVariable variable(folderVariable, "");
    EXPECT_EXIT((enterRoot(root), expectFound(systemFile)), testing::ExitedWithCode(0), "found");
}

}  // namespace
