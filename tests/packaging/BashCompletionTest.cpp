#include <gmock/gmock.h>

#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "ProgramWords.h"
#include "TempFolder.h"
#include "Terminal.h"

namespace TevTest {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

using Words = std::vector<std::string>;

/// What bash offers for the last of the words behind the program's name, which are in the pieces that bash makes of
/// them.
Words offered(const Words& words, const ChildProcess::Setting& setting = {}) {
    // As bash calls it: the words, the place of the one to complete, and the function of the program.
    const std::string script = R"(
        . "$1" && shift
        COMP_WORDS=("$@")
        COMP_CWORD=$(($# - 1))
        definition=($(complete -p tev-agent))
        "${definition[-2]}"
        for word in "${COMPREPLY[@]}"; do printf '%s\n' "$word"; done)";
    Words arguments = {"--norc", "-c", script, "bash", TEV_COMPLETION, TEV_AGENT_PROGRAM};
    arguments.insert(arguments.end(), words.begin(), words.end());
    ChildProcess bash("/bin/bash", arguments, setting);
    EXPECT_EQ(bash.wait(), 0);
    EXPECT_EQ(bash.err(), "");
    std::istringstream lines(bash.out());
    Words result;
    for (std::string line; std::getline(lines, line);) {
        result.push_back(line);
    }
    return result;
}

TEST(BashCompletionTest, offersEveryCommandOfTheHelp) {
    EXPECT_THAT(offered({""}), IsSupersetOf(ProgramWords::commands()));
    EXPECT_THAT(offered({"--node", "n", "ex"}), ElementsAre("export"));
    EXPECT_THAT(offered({"list", ""}), IsEmpty());
    EXPECT_THAT(offered({"help", ""}), IsSupersetOf(ProgramWords::commands()));
    EXPECT_THAT(offered({"help", "list", ""}), IsEmpty());
}

TEST(BashCompletionTest, offersEveryOptionOfTheHelpBeforeAndBehindTheCommand) {
    const std::set<std::string> common = ProgramWords::options("");
    EXPECT_THAT(offered({"--"}), IsSupersetOf(common));
    for (const std::string& command : ProgramWords::commands()) {
        const Words words = offered({command, "--"});
        EXPECT_THAT(words, IsSupersetOf(common)) << command;
        EXPECT_THAT(words, IsSupersetOf(ProgramWords::options(command)));
    }
    EXPECT_THAT(offered({"list", "--"}), Not(Contains("--jobs")));
    EXPECT_THAT(offered({"export", "--pass"}), ElementsAre("--password-stdin", "--password-file"));
}

TEST(BashCompletionTest, offersTheValuesOfOptions) {
    EXPECT_THAT(offered({"--output", ""}), ElementsAre("table", "json"));
    EXPECT_THAT(offered({"list", "--output", "=", "j"}), ElementsAre("json"));
    EXPECT_THAT(offered({"--output", "="}), ElementsAre("table", "json"));
    EXPECT_THAT(offered({"--log-level", ""}), ElementsAre("0", "1", "2", "3", "4", "5", "6", "7", "8"));
}

TEST(BashCompletionTest, offersTheSchemaIdsOfTheNode) {
    EXPECT_THAT(offered({"--node", TEV_EXAMPLE_NODE, "get", "S"}),
                ElementsAre("SecurityModel", "SoftwareModel", "SynchronizationModel", "SystemFunctionsModel"));
    EXPECT_THAT(offered({"--node", "=", TEV_EXAMPLE_NODE, "export", "T"}), ElementsAre("TransportModel"));
    EXPECT_THAT(offered({"--models", TEV_EXAMPLE_NODE "/models", "get", "--output", "json", "T"}),
                ElementsAre("TransportModel"));
    ChildProcess::Setting atHome;
    atHome.environment["HOME"] = TEV_EXAMPLE_NODE;
    EXPECT_THAT(offered({"--models", "~/models", "get", "T"}, atHome), ElementsAre("TransportModel"));
    EXPECT_THAT(offered({"get", ""}), IsEmpty());
    EXPECT_THAT(offered({"--node", TEV_EXAMPLE_NODE, "export", "--all", ""}), IsEmpty());
}

// Words were passed on with their quotes, so that the folder was not found.
TEST(BashCompletionTest, knowsANodeWhoseNameIsQuoted) {
    const TempFolder folder;
    const std::string node = folder.path() / R"(my "own" $node's\)";
    std::filesystem::create_directories(node + "/models");
    std::filesystem::copy_file(TEV_EXAMPLE_NODE "/models/TransportModel.xml", node + "/models/a.xml");
    std::filesystem::copy_file(TEV_EXAMPLE_NODE "/managed-objects.xml", node + "/managed-objects.xml");
    ChildProcess::Setting setting;
    setting.workingFolder = folder.path();
    setting.environment["HOME"] = folder.path();
    for (const std::string typed : {R"('my "own" $node'\''s\')", R"("my \"own\" \$node's\\")",
                                    R"(my\ \"own\"\ \$node\'s\\)", R"(~/my' "own" $node'"'s"'\')"}) {
        EXPECT_THAT(offered({"--node", typed, "get", "T"}, setting), ElementsAre("TransportModel")) << typed;
    }
    EXPECT_THAT(offered({"--node", "=", R"('my "own" $node'\''s\')", "get", "T"}, setting),
                ElementsAre("TransportModel"));
    EXPECT_THAT(offered({"--node", "'my \"own\" $(touch mark)", "get", "T"}, setting), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "mark"));
}

TEST(BashCompletionTest, offersAttributesBehindWhatToGet) {
    EXPECT_THAT(offered({"get", "Transport", "v"}), ElementsAre("version"));
    EXPECT_THAT(offered({"get", "ManagedElement", "=", "1,Schema", "=", "x", "base"}),
                ElementsAre("baseModelIdentifier", "baseModelVersion"));
}

TEST(BashCompletionTest, runsNothingThatAModelIsCalled) {
    const TempFolder folder;
    std::filesystem::create_directory(folder.path() / "models");
    folder.write("models/a.xml", "<mom name=\"x$(touch mark)\"/>");
    folder.write("models/b.xml", "<mom name=\"x;touch mark\"/>");
    ChildProcess::Setting setting;
    setting.workingFolder = folder.path();
    EXPECT_THAT(offered({"--models", "models", "get", "x"}, setting),
                ElementsAre("x\\$\\(touch\\ mark\\)", "x\\;touch\\ mark"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "mark"));
}

TEST(BashCompletionTest, loadsNoComponentThatIsNamed) {
    EXPECT_THAT(offered({"--node", TEV_EXAMPLE_NODE, "--component", "/nowhere/x.so", "get", "T"}),
                ElementsAre("TransportModel"));
}

TEST(BashCompletionTest, aPersonAtATerminalGetsCommandsAndFileNames) {
    const TempFolder folder;
    folder.write("secret-of-the-server", "");
    Terminal terminal;
    ChildProcess::Setting setting;
    setting.terminal = terminal.path();
    setting.in = setting.out = setting.err = terminal.descriptor();
    setting.workingFolder = folder.path();
    setting.environment["PS1"] = "ready> ";
    setting.environment["INPUTRC"] = "/dev/null";
    setting.environment["TERM"] = "dumb";
    const ChildProcess bash("/bin/bash", {"--norc", "--noprofile", "-i"}, setting);
    terminal.waitFor("ready> ");
    terminal.type(". " TEV_COMPLETION "\n");
    terminal.type("tev-agent exp\t--password-file se\t");
    terminal.waitFor("tev-agent export --password-file secret-of-the-server ");
}

}  // namespace

}  // namespace TevTest
