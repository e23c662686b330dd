#include "KnownHosts.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "AsNobody.h"
#include "EnvironmentVariable.h"
#include "FileText.h"
#include "TempFolder.h"
#include "TevException.h"

namespace {

using Tev::KnownHosts;
using TevTest::EnvironmentVariable;

class KnownHostsTest : public testing::Test {
protected:
    void expectRefused(const std::string& reason) const {
        try {
            const KnownHosts hosts;
            FAIL();
        } catch (const Tev::TevException& failure) {
            EXPECT_EQ(failure.getReturnCode(), -1);
            EXPECT_EQ(std::string(failure.what()),
                      (folder.path() / "a/b/known_hosts").string() +
                          ", where host keys are remembered, cannot be written: " + reason);
        }
    }

    const TevTest::TempFolder folder;
    const EnvironmentVariable state{"TEV_STATE_DIR", folder.path().string() + "/a/b"};
};

TEST_F(KnownHostsTest, folderIsMadeForItsUserOnly) {
    EXPECT_EQ(KnownHosts().path(), folder.path() / "a/b/known_hosts");
    struct stat status {};
    ASSERT_EQ(stat((folder.path() / "a/b").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFDIR | 0700U);
    ASSERT_EQ(stat((folder.path() / "a").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFDIR | 0700U);
    ASSERT_EQ(stat((folder.path() / "a/b/known_hosts").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
    EXPECT_EQ(KnownHosts().path(), folder.path() / "a/b/known_hosts");
}

TEST_F(KnownHostsTest, fileThatIsThereStaysAsItIs) {
    const KnownHosts first;
    const std::string keys = "host a key\n";
    folder.write("a/b/known_hosts", keys);
    const KnownHosts second;
    EXPECT_EQ(TevTest::contents(second.path()), keys);
}

TEST_F(KnownHostsTest, relativeFolderIsMadeAbsolute) {
    const EnvironmentVariable relative("TEV_STATE_DIR", std::filesystem::relative(folder.path() / "c").string());
    EXPECT_TRUE(std::filesystem::path(KnownHosts().path()).is_absolute());
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "c/known_hosts"));
}

TEST_F(KnownHostsTest, fileThatMayNotBeWritten) {
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::create_directories(folder.path() / "a/b");
    std::filesystem::permissions(folder.path() / "a", std::filesystem::perms(0755));
    std::filesystem::permissions(folder.path() / "a/b", std::filesystem::perms(0555));
    const TevTest::AsNobody nobody;
    expectRefused("Permission denied");
}

// The look whether the folder is there hid the reason for which it could not be made: "No such file or directory".
TEST_F(KnownHostsTest, folderThatMayNotBeMade) {
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0555));
    const TevTest::AsNobody nobody;
    expectRefused("Permission denied");
}

TEST_F(KnownHostsTest, optionKeepsTheNameAsItIs) {
    const EnvironmentVariable odd("TEV_STATE_DIR", folder.path().string() + "/a \"%h\\");
    EXPECT_EQ(KnownHosts().option(), '"' + folder.path().string() + "/a \\\"%%h\\\\/known_hosts\"");
}

TEST_F(KnownHostsTest, commandThatForgetsAKey) {
    const KnownHosts hosts;
    const std::string file = " -f '" + hosts.path() + "'";
    EXPECT_EQ(hosts.forgetCommand("host", ""), "ssh-keygen -R 'host'" + file);
    EXPECT_EQ(hosts.forgetCommand("host", "22"), "ssh-keygen -R 'host'" + file);
    EXPECT_EQ(hosts.forgetCommand("host", "2222"), "ssh-keygen -R '[host]:2222'" + file);
    EXPECT_EQ(hosts.forgetCommand("[::1]", ""), "ssh-keygen -R '::1'" + file);
    EXPECT_EQ(hosts.forgetCommand("[::1]", "2222"), "ssh-keygen -R '[::1]:2222'" + file);
}

/// The folder that is used when none is given, for a user who is not root.
TEST_F(KnownHostsTest, folderOfAUserIsInTheUsersState) {
    if (geteuid() == 0 && seteuid(65534) != 0) {
        FAIL() << "cannot become a user";
    }
    const TevTest::TempFolder own;
    {
        const EnvironmentVariable none("TEV_STATE_DIR", "");
        const EnvironmentVariable home("HOME", own.path() / "home");
        const EnvironmentVariable base("XDG_STATE_HOME", own.path() / "xdg");
        EXPECT_EQ(KnownHosts().path(), own.path() / "xdg/tev/known_hosts");
        const EnvironmentVariable relative("XDG_STATE_HOME", "relative");
        EXPECT_EQ(KnownHosts().path(), own.path() / "home/.local/state/tev/known_hosts");
        const EnvironmentVariable homeless("HOME", {});
        EXPECT_THROW(KnownHosts(), Tev::TevException);
    }
    if (getuid() == 0 && seteuid(0) != 0) {
        FAIL() << "cannot become root again";
    }
}

}  // namespace
