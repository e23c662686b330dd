// What the program shows on a terminal, and that nothing of it reaches a pipe.

#include <gmock/gmock.h>

#include <algorithm>
#include <map>

#include "AgentProcess.h"
#include "TempFolder.h"
#include "Terminal.h"
#include "TestNode.h"

namespace TevTest {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using Environment = std::map<std::string, std::string>;

const Environment colours = {{"TERM", "xterm"}};
const Environment plain = {{"TERM", "xterm"}, {"NO_COLOR", "1"}};

const std::string bold = "\x1b[1m";
const std::string green = "\x1b[32m";
const std::string red = "\x1b[31m";
const std::string usual = "\x1b[0m";

class TerminalOutputTest : public testing::Test {
protected:
    std::vector<std::string> onNode(const std::vector<std::string>& command) const {
        std::vector<std::string> words = {"--node", node.path()};
        words.insert(words.end(), command.begin(), command.end());
        return words;
    }

    /// What a new terminal that is so wide shows of the results of a command.
    std::string shown(const std::vector<std::string>& command, const Environment& environment,
                      unsigned short width = 80) const {
        Terminal terminal;
        terminal.setWidth(width);
        AgentProcess::Setting setting;
        setting.environment = environment;
        setting.out = terminal.descriptor();
        AgentProcess::run(onNode(command), setting);
        std::string text = terminal.shown();
        text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
        return text;
    }

    TestNode node;
};

TEST_F(TerminalOutputTest, aTableFitsTheTerminal) {
    EXPECT_EQ(shown({"list"}, plain),
              "schemaId   identifier  baseModel        version  baseModel        selectedModel\n"
              "                        Identifier                Version          Options\n"
              "Equipment  Equipment                    1.2                       Hot Swap\n"
              "Plain      Plain\n"
              "Transport  Transport   OrvaTransport    2.1.5    3.4              IpSec, Sync\n");
}

TEST_F(TerminalOutputTest, columnsGoesBeforeTheWidthOfTheTerminal) {
    Environment environment = plain;
    environment["COLUMNS"] = "91";
    EXPECT_THAT(
        shown({"list"}, environment),
        StartsWith("schemaId   identifier  baseModelIdentifier  version  baseModelVersion  selectedModelOptions\n"));
    environment["COLUMNS"] = "20";
    EXPECT_THAT(shown({"list"}, environment), StartsWith("schemaId: Equipment\nidentifier: Equipment\n"));
}

TEST_F(TerminalOutputTest, aPipeGetsWholeRowsWithoutColours) {
    Environment environment = colours;
    environment["COLUMNS"] = "20";
    AgentProcess::Setting setting;
    setting.environment = environment;
    EXPECT_EQ(
        AgentProcess::run(onNode({"get", "Transport", "schemaId", "identifier", "selectedModelOptions"}), setting).out,
        "schemaId   identifier  selectedModelOptions\n"
        "Transport  Transport   IpSec, Sync\n");
    EXPECT_THAT(AgentProcess::run(onNode({"check"}), setting).out, Not(HasSubstr("\x1b")));
}

TEST_F(TerminalOutputTest, helpFitsTheTerminal) {
    EXPECT_THAT(shown({"help"}, plain, 40), HasSubstr("\n  --node DIR  The node: DIR/models,\n"));
    EXPECT_THAT(shown({"--help"}, plain, 140), HasSubstr(" is there, DIR/libtev_schema_populator.cfg\n"));
}

TEST_F(TerminalOutputTest, jsonIsTheSameOnATerminal) {
    EXPECT_EQ(shown({"--output=json", "list"}, colours, 20), AgentProcess::run(onNode({"--output=json", "list"})).out);
}

TEST_F(TerminalOutputTest, titlesAndOutcomesHaveColoursOnATerminal) {
    EXPECT_EQ(shown({"get", "Plain", "schemaId"}, colours), bold + "schemaId" + usual + "\nPlain\n");
    EXPECT_THAT(shown({"check", "--only", "load.opens"}, colours),
                StartsWith(green + "passed" + usual + "   load.opens "));
    const std::string library = std::string(TEV_HOSTILE_COMPONENTS) + "/exports_in_company.so";
    const TempFolder folder;
    EXPECT_THAT(shown({"export", "--all", "--jobs=2", "sftp://h/p", "--component", library, "--password-file",
                       folder.write("password", "secret\n")},
                      colours),
                AllOf(HasSubstr("1: " + green + "exported" + usual + ": "), HasSubstr("2: " + red + "failed" + usual)));
    EXPECT_THAT(shown({"check", "/nowhere.so"}, colours), StartsWith(red + "failed" + usual + "   load.opens "));
}

TEST_F(TerminalOutputTest, thereAreNoColoursWithNoColorOrOnADumbTerminal) {
    for (const Environment& environment : {plain, Environment{{"TERM", "dumb"}}}) {
        EXPECT_EQ(shown({"get", "Plain", "schemaId"}, environment), "schemaId\nPlain\n");
        EXPECT_THAT(shown({"check"}, environment), Not(HasSubstr("\x1b")));
    }
}

TEST_F(TerminalOutputTest, standardErrorHasColoursWhereItIsATerminalItself) {
    for (const Environment& environment : {colours, plain}) {
        Terminal terminal;
        AgentProcess::Setting setting;
        setting.environment = environment;
        setting.err = terminal.descriptor();
        EXPECT_EQ(AgentProcess::run(onNode({"get", "Plain", "version", "--log-level=0"}), setting).out, "version\n\n");
        AgentProcess::run(onNode({"get", "Nothing"}), setting);
        const bool isPlain = environment == plain;
        EXPECT_THAT(terminal.shown(), StartsWith((isPlain ? "" : bold) + "tev-agent:" + (isPlain ? "" : usual) +
                                                 " there is no " + TestNode::schemaDn("Nothing")));
    }
}

}  // namespace

}  // namespace TevTest
