// The shell as it reads a script.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "AgentProcess.h"
#include "Pipe.h"
#include "Terminal.h"
#include "TestNode.h"

namespace TevTest {

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string version = "version\n2.1.5\n";

class ShellScriptTest : public testing::Test {
protected:
    static std::string fault(const std::string& name) {
        return std::string(TEV_HOSTILE_COMPONENTS) + "/" + name + ".so";
    }

    std::vector<std::string> arguments(const std::vector<std::string>& options) const {
        std::vector<std::string> all = {"--node", node.path(), "shell"};
        all.insert(all.end(), options.begin(), options.end());
        return all;
    }

    /// Has the shell read `text` out of a file.
    AgentOutcome run(const std::string& text, const std::vector<std::string>& options = {},
                     AgentProcess::Setting setting = {}) const {
        setting.environment["TEV_STATE_DIR"] = state;
        setting.in = open(folder.write("script", text).c_str(), O_RDONLY | O_CLOEXEC);
        const AgentOutcome outcome = AgentProcess::run(arguments(options), setting);
        close(setting.in);
        return outcome;
    }

    TestNode node;
    const TempFolder folder;
    const std::string state = folder.path() / "state";
};

TEST_F(ShellScriptTest, writesTheResultsOfEachLineAndNothingElse) {
    const AgentOutcome outcome =
        run("get Transport version\n\n  # what follows is the same\nget 'Transport' \"version\" # again\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, version + version);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ShellScriptTest, startsTheComponentsOnceAndStopsThemAtTheEnd) {
    const AgentOutcome outcome = run("get one version\nget two version\n", {"--component", fault("prints")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "loaded\ninitialized\nstarted\nfinished\nfinished\nunloaded\n");
}

TEST_F(ShellScriptTest, namesTheLineThatFailsAndGoesOn) {
    const AgentOutcome outcome =
        run("get Transport version\nget Nothing\n\nget Transport nothing\nget Transport version\n");
    EXPECT_EQ(outcome.out, version + version);
    EXPECT_EQ(outcome.err,
              "tev-agent: line 2: there is no " + TestNode::schemaDn("Nothing") +
                  "; list shows those that there are\ntev-agent: line 4: " + TestNode::schemaDn("Transport") +
                  " has no attribute nothing; it has schemaId, identifier, "
                  "baseModelIdentifier, version, baseModelVersion, selectedModelOptions\n");
}

TEST_F(ShellScriptTest, theStatusIsThatOfTheFirstLineThatFails) {
    EXPECT_EQ(run("list\nshout\nget Nothing\nlist\n").status, 2);
    EXPECT_EQ(run("list\nget Nothing\nshout\nlist\n").status, 1);
    EXPECT_EQ(run("get Nothing\nquit\n").status, 1);
}

TEST_F(ShellScriptTest, namesTheLineOfAnInstanceThatCannotBeReadToo) {
    const AgentOutcome outcome = run("# first\nlist\n", {"--component", fault("read_throws_int")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err,
                StartsWith("tev-agent: line 2: cannot read attribute version of " + TestNode::schemaDn("one")));
    EXPECT_THAT(outcome.out, HasSubstr("\nvalue")) << "the others are shown";
}

TEST_F(ShellScriptTest, refusesAnOptionOfTheNodeOnALine) {
    const AgentOutcome outcome = run("list --node elsewhere\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(
        outcome.err,
        "tev-agent: line 1: --node holds for the whole shell, and stands before its name (help shows the usage)\n");
}

TEST_F(ShellScriptTest, theOutputOfALineGoesBeforeThatOfTheShell) {
    const AgentOutcome outcome =
        run("get Transport version\nget Transport version --output table\n", {"--output", "json"});
    EXPECT_EQ(outcome.out, "{\"schemas\":[\n{\"version\":\"2.1.5\"}\n]}\n" + version);
}

TEST_F(ShellScriptTest, endsWhereItIsToldTo) {
    for (const std::string word : {"quit", "exit"}) {
        const AgentOutcome outcome = run("get Transport version\n" + word + "\nget Transport version\n");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.out, version);
    }
}

TEST_F(ShellScriptTest, helpIsAResult) {
    const AgentOutcome outcome = run("help\nhelp export\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("Commands:\n  list "), HasSubstr("Examples:\n  export TransportModel ")));
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ShellScriptTest, thePasswordOfALineIsTheNextLine) {
    const AgentOutcome outcome =
        run("export one sftp://quiet/p --password-stdin\nlist\nexport two sftp://quiet/p --password-stdin\nsecret",
            {"--component", fault("exports_as_told")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "export " + TestNode::schemaDn("one") +
                               " (type 9, 1: sftp://quiet/p) (type 9, 1: list)\nexport " + TestNode::schemaDn("two") +
                               " (type 9, 1: sftp://quiet/p) (type 9, 1: secret)\n");
}

TEST_F(ShellScriptTest, aLineMayEndAsElsewhereAndTheLastOneNotAtAll) {
    EXPECT_EQ(run("get Transport version\r\nget Transport version").out, version + version);
    EXPECT_EQ(run("").status, 0);
}

TEST_F(ShellScriptTest, refusesALineThatIsTooLongAsAWhole) {
    const std::string longest = "get Transport version #" + std::string(65536 - 23, 'x');
    const AgentOutcome outcome = run(longest + "\n" + longest + "x\n" + longest + "\r\n" + longest + "\rx\n" + longest +
                                     "x\r\nget Transport version\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, version + version + version);
    EXPECT_EQ(outcome.err,
              "tev-agent: line 2: the line is longer than 65536 bytes\n"
              "tev-agent: line 4: the line is longer than 65536 bytes\n"
              "tev-agent: line 5: the line is longer than 65536 bytes\n");
}

TEST_F(ShellScriptTest, refusesALineWithANullByte) {
    const AgentOutcome outcome = run(std::string("get Transport\0 version\nget Transport version\n", 45));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, version);
    EXPECT_EQ(outcome.err, "tev-agent: line 1: the line holds a null byte\n");
}

TEST_F(ShellScriptTest, refusesAQuotationThatDoesNotEnd) {
    const AgentOutcome outcome = run("get 'Transport version\nget Transport version\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, version);
    EXPECT_EQ(outcome.err, "tev-agent: line 1: a ' has no second one that ends its quotation\n");
}

TEST_F(ShellScriptTest, carriesALineOutBeforeTheNextOneIsThere) {
    Pipe script(0);
    const Pipe results(0);
    AgentProcess::Setting setting;
    setting.in = script.reading();
    setting.out = results.writing();
    AgentProcess agent(arguments({}), setting);
    std::string read(version.size(), ' ');
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(write(script.writing(), "get Transport version\n", 22), 22);
        ASSERT_EQ(::read(results.reading(), read.data(), read.size()), static_cast<ssize_t>(read.size()));
        EXPECT_EQ(read, version);
    }
    script.closeWriting();
    EXPECT_EQ(agent.outcome().status, 0);
}

TEST_F(ShellScriptTest, aComponentThatCallsExitEndsTheShell) {
    const AgentOutcome outcome =
        run("get one version\nget two version\nget one version\n", {"--component", fault("exits_from_read")});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.err, "tev-agent: line 2: component TevSchemaMoService called exit in getMoAttribute\n");
}

TEST_F(ShellScriptTest, checksInAProgramOfItsOwn) {
    const AgentOutcome alone = AgentProcess::run({"--node", node.path(), "check"});
    const AgentOutcome outcome = run("get Transport version\ncheck\nget Transport version\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(alone.out, HasSubstr("passed"));
    EXPECT_EQ(outcome.out, version + alone.out + version);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ShellScriptTest, checksAlsoWhereTheParentIgnoresTheEndOfChildren) {
    AgentProcess::Setting setting;
    setting.ignoredSignals = {SIGCHLD};
    const AgentOutcome outcome = run("check --only load.opens\n", {}, setting);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, EndsWith("1 passed\n"));
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ShellScriptTest, aCheckThatFailsIsSaidWithItsLine) {
    const AgentOutcome outcome =
        run("get Transport version\ncheck " + fault("start_fails") + "\nget Transport version\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, AllOf(StartsWith(version), HasSubstr("failed"), EndsWith(version)));
    EXPECT_THAT(outcome.err, EndsWith("tev-agent: line 2: the check ended with status 1\n"));
}

TEST_F(ShellScriptTest, aReaderWhoHasGoneAwayKeepsNoLineFromBeingCarriedOut) {
    const std::string password = folder.write("password", "secret\n");
    Pipe unread(0);
    unread.closeReading();
    AgentProcess::Setting setting;
    setting.out = unread.writing();
    const AgentOutcome outcome =
        run("get one version\ncheck --only load.opens\nget Nothing nothing\n"
            "export one sftp://h/p --password-file " +
                password + "\n",
            {"--component", fault("exports_as_told")}, setting);
    EXPECT_EQ(outcome.status, 141);
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("export " + TestNode::schemaDn("one")),
                                   EndsWith("\ntev-agent: line 4: File transfer successful\n"),
                                   Not(HasSubstr("line 1")), Not(HasSubstr("line 2"))));
}

TEST_F(ShellScriptTest, anInterruptEndsAScript) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        Pipe script(0);
        AgentProcess::Setting setting;
        setting.in = script.reading();
        AgentProcess agent(arguments({"--component", fault("endless_listing")}), setting);
        ASSERT_EQ(write(script.writing(), "list\nlist\n", 10), 10);
        agent.waitForError("listing\n");
        agent.send(signal);
        const AgentOutcome outcome = agent.outcome();
        EXPECT_EQ(outcome.status, 130);
        EXPECT_EQ(outcome.err, "listing\nabort\nfinish\ntev-agent: line 1: interrupted\nstop\nterminate\n");
    }
}

TEST_F(ShellScriptTest, anInterruptEndsACheckInGoodOrderWhicheverOfTheProgramsItIsSentTo) {
    // Often, for it is up to chance whether a second signal, were there one, would come before the check has ended.
    for (int i = 0; i < 10; ++i) {
        const bool isForTheGroup = i > 0;
        Pipe script(0);
        const Pipe results(0);
        AgentProcess::Setting setting;
        setting.in = script.reading();
        setting.out = results.writing();
        AgentProcess agent(arguments({}), setting);
        const std::string line = "check --time-limit 600 --only load.opens --only lifecycle.start " +
                                 fault("endless_start") + "\nget Transport version\n";
        ASSERT_EQ(write(script.writing(), line.data(), line.size()), static_cast<ssize_t>(line.size()));
        char byte = '\0';
        ASSERT_EQ(::read(results.reading(), &byte, 1), 1) << "the check is under way";
        ASSERT_EQ(kill(isForTheGroup ? -agent.id() : agent.id(), SIGINT), 0);
        const AgentOutcome outcome = agent.outcome();
        EXPECT_EQ(outcome.status, 130);
        EXPECT_EQ(outcome.err, "tev-agent: interrupted\ntev-agent: line 1: the check ended with status 130\n");
    }
}

TEST_F(ShellScriptTest, anInterruptEndsTheWaitForALine) {
    Pipe script(0);
    AgentProcess::Setting setting;
    setting.in = script.reading();
    AgentProcess agent(arguments({"--component", fault("prints")}), setting);
    agent.waitForError("started\n");
    agent.waitUntilAsleep();
    agent.send(SIGTERM);
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.err, EndsWith("unloaded\ntev-agent: interrupted\n"));
}

TEST_F(ShellScriptTest, standardInputThatCannotBeReadIsSaid) {
    AgentProcess::Setting setting;
    setting.in = open("/", O_RDONLY | O_CLOEXEC);
    const AgentOutcome outcome = AgentProcess::run(arguments({}), setting);
    close(setting.in);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.err, "tev-agent: cannot read standard input: Is a directory\n");
}

TEST_F(ShellScriptTest, needsANode) {
    EXPECT_EQ(AgentProcess::run({"shell"}).err,
              "tev-agent: neither --node nor --models says where the models are (tev-agent --help shows the usage)\n");
}

TEST_F(ShellScriptTest, keepsNoHistory) {
    run("list\n");
    struct stat status {};
    EXPECT_NE(stat(state.c_str(), &status), 0);
}

TEST_F(ShellScriptTest, whatIsTypedIsAScriptWhereStandardErrorIsNoTerminal) {
    Terminal terminal;
    AgentProcess::Setting setting;
    setting.terminal = terminal.path();
    setting.in = terminal.descriptor();
    AgentProcess agent(arguments({}), setting);
    terminal.type("get Nothing\nget Transport version\n\x04");
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, version);
    EXPECT_EQ(outcome.err, "tev-agent: line 1: there is no " + TestNode::schemaDn("Nothing") +
                               "; list shows those that there are\n");
}

}  // namespace

}  // namespace TevTest
