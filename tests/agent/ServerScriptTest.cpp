// scripts/sftp-server as an operator calls it.

#include <gmock/gmock.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "AgentProcess.h"
#include "FileText.h"
#include "TempFolder.h"
#include "Wait.h"

namespace TevTest {

namespace {

using testing::StartsWith;

const std::string usage = "scripts/sftp-server [OPTION...] FOLDER: ";

TEST(ServerScriptTest, anExportReachesTheUriThatItPrintsWhateverTheFolderIsCalled) {
    const TempFolder world;
    std::filesystem::permissions(world.path(), std::filesystem::perms(0755));
    const std::filesystem::path folder = world.path() / "a b#c?d%20e\xc3\xb6";
    ChildProcess script(SFTP_SERVER_SCRIPT, {folder}, {});
    const auto lines = [&script] {
        const std::string out = script.out();
        return std::count(out.begin(), out.end(), '\n');
    };
    waitUntil([&] { return lines() >= 2 || script.hasEnded(); });
    std::istringstream announcement(script.out());
    std::string uri;
    std::string password;
    std::getline(announcement, uri);
    std::getline(announcement, password);
    AgentProcess::Setting setting;
    setting.environment["TEV_STATE_DIR"] = world.path() / "state";
    const AgentOutcome outcome = AgentProcess::run({"--node", TEV_EXAMPLE_NODE, "export", "TransportModel", uri,
                                                    "--password-file", world.write("password", password)},
                                                   setting);
    script.send(SIGTERM);
    EXPECT_EQ(script.wait(), 0) << script.err();
    EXPECT_EQ(outcome.err, "tev-agent: File transfer successful\n");
    EXPECT_EQ(contents(folder / "TransportModel.xml"),
              contents(std::filesystem::path(TEV_EXAMPLE_NODE) / "models/TransportModel.xml"));
}

TEST(ServerScriptTest, showsItsUsage) {
    ChildProcess asked(SFTP_SERVER_SCRIPT, {"--help"}, {});
    EXPECT_EQ(asked.wait(), 0);
    EXPECT_THAT(asked.out(), StartsWith(usage));
    EXPECT_EQ(asked.err(), "");
}

TEST(ServerScriptTest, takesNoOptionForAFolder) {
    const TempFolder folder;
    ChildProcess::Setting setting;
    setting.workingFolder = folder.path();
    // Should it be taken for one, there is no address to serve it on.
    for (const std::string option : {"--password-stdin", "--help"}) {
        ChildProcess script(SFTP_SERVER_SCRIPT, {"--address", "nowhere", option}, setting);
        EXPECT_EQ(script.wait(), 2);
        EXPECT_EQ(script.out(), "");
        EXPECT_THAT(script.err(), StartsWith(usage));
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

}  // namespace

}  // namespace TevTest
