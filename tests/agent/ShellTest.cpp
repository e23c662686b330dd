// The shell as an operator has it on a terminal.

#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "AgentProcess.h"
#include "FileText.h"
#include "Pipe.h"
#include "Terminal.h"
#include "TestNode.h"

namespace TevTest {

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

const std::string prompt = "tev> ";
const std::string version = "\r\nversion\r\n2.1.5\r\n" + prompt;

class ShellTest : public testing::Test {
protected:
    /// A shell on a terminal of its own, which is its controlling one.
    class Session {
    public:
        Session(const ShellTest& test, const std::vector<std::string>& options)
            : agent(argumentsFor(test, options), settingOn(terminal, test)) {
            greeting = terminal.take(prompt);
        }

        /// Types `keys`, and returns what is shown then up to the end of `expected`.
        std::string type(const std::string& keys, const std::string& expected) {
            terminal.type(keys);
            return terminal.take(expected);
        }

        /// Drops the line, with Ctrl-C, and waits for the prompt of another one.
        void drop() { type("\x03", "^C\r\n" + prompt); }

        /// Sends it a signal while it waits.
        void send(int signal) {
            agent.waitUntilAsleep();
            agent.send(signal);
        }

        /// Ends it with Ctrl-D.
        int end() {
            terminal.type("\x04");
            return agent.outcome().status;
        }

        Terminal terminal;
        AgentProcess agent;
        std::string greeting;  ///< what is shown up to the first prompt

    private:
        static std::vector<std::string> argumentsFor(const ShellTest& test, const std::vector<std::string>& options) {
            std::vector<std::string> all = {"--node", test.node.path(), "shell"};
            all.insert(all.end(), options.begin(), options.end());
            return all;
        }

        static AgentProcess::Setting settingOn(const Terminal& terminal, const ShellTest& test) {
            terminal.setWidth(80);
            AgentProcess::Setting setting;
            setting.environment = {{"TERM", "xterm"}, {"NO_COLOR", "1"}, {"TEV_STATE_DIR", test.state}};
            setting.in = terminal.descriptor();
            setting.out = terminal.descriptor();
            setting.err = terminal.descriptor();
            setting.terminal = terminal.path();
            setting.workingFolder = test.folder.path();
            return setting;
        }
    };

    Session start(const std::string& component = "") const {
        return Session(*this, component.empty() ? std::vector<std::string>()
                                                : std::vector<std::string>{"--component", fault(component)});
    }

    static std::string fault(const std::string& name) {
        return std::string(TEV_HOSTILE_COMPONENTS) + "/" + name + ".so";
    }

    /// A line for a check that has something to tell before it takes for ever.
    static std::string endlessCheck() {
        return "check --time-limit 600 --only load.opens --only lifecycle.start " + fault("endless_start") + "\n";
    }

    TestNode node;
    const TempFolder folder;
    const std::string state = folder.path() / "state";
};

TEST_F(ShellTest, carriesOutWhatIsTypedAndPromptsAgain) {
    Session shell = start();
    shell.type("get Transport version\n", version);
    shell.type("get Transport version --output json\n", "{\"version\":\"2.1.5\"}\r\n]}\r\n" + prompt);
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, saysAFailureWithoutALineAndEndsWell) {
    Session shell = start();
    shell.type("get Nothing\n", "; list shows those that there are\r\n" + prompt);
    shell.type("get 'Nothing\n", "\r\ntev-agent: a ' has no second one that ends its quotation\r\n" + prompt);
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, quitEndsIt) {
    for (const std::string word : {"quit", "exit"}) {
        Session shell = start();
        shell.terminal.type(word + "\n");
        EXPECT_EQ(shell.agent.outcome().status, 0);
        EXPECT_TRUE(shell.terminal.hasEcho());
    }
}

TEST_F(ShellTest, ctrlDEndsItOnAnEmptyLineOnlyAndStopsTheComponents) {
    Session shell = start("prints");
    shell.type("get one version\x01\x04\x04\x04\x04\n", "\r\ntev-agent: ");
    shell.terminal.take(prompt);
    EXPECT_EQ(shell.end(), 0);
    EXPECT_THAT(shell.terminal.shown(), EndsWith("^D\r\nunloaded\r\n"));
    EXPECT_TRUE(shell.terminal.hasEcho());
}

TEST_F(ShellTest, helpShowsExamples) {
    Session shell = start();
    EXPECT_THAT(shell.type("help get\n", prompt), HasSubstr("Examples:\r\n  get TransportModel\r\n"));
    EXPECT_THAT(shell.type("help\n", prompt), AllOf(HasSubstr("list "), HasSubstr("quit"), Not(HasSubstr("--node"))));
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, ctrlCDropsTheLine) {
    Session shell = start();
    shell.type("get Nothing", "get Nothing");
    shell.drop();
    EXPECT_THAT(shell.type("get Transport version\n", version), Not(HasSubstr("tev-agent")));
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, noKeyStopsOrQuitsItAtThePrompt) {
    Session shell = start();
    shell.type("get Tran\x1a\x1csport version\n", version);
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, anInterruptThatIsNotTypedDropsTheLineToo) {
    Session shell = start();
    shell.type("get Nothing", "get Nothing");
    for (int i = 0; i < 3; ++i) {
        shell.send(SIGINT);
        shell.terminal.take("\r\n" + prompt);
    }
    shell.type("get Transport version\n", version);
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, aSignalThatEndsProgramsEndsItInGoodOrder) {
    for (const int signal : {SIGTERM, SIGHUP}) {
        Session shell = start("prints");
        shell.send(signal);
        EXPECT_EQ(shell.agent.outcome().status, 130);
        EXPECT_THAT(shell.terminal.shown(), EndsWith("unloaded\r\ntev-agent: interrupted\r\n"));
        EXPECT_TRUE(shell.terminal.hasEcho());
    }
}

TEST_F(ShellTest, ctrlCEndsTheCommandThatIsUnderWayOnly) {
    Session shell = start("endless_listing");
    for (int i = 0; i < 3; ++i) {
        EXPECT_THAT(shell.type("list\n", "listing\r\n"), Not(HasSubstr(prompt))) << "there was one already";
        EXPECT_THAT(shell.type("\x03", prompt), HasSubstr("abort\r\nfinish\r\ntev-agent: interrupted\r\n"));
    }
    EXPECT_EQ(shell.end(), 0);
    EXPECT_THAT(shell.terminal.shown(), EndsWith("stop\r\nterminate\r\n"));
}

TEST_F(ShellTest, aTransferIsTriedAfterAnInterrupt) {
    folder.write("password", "secret\n");
    Session shell = start();
    shell.send(SIGINT);
    shell.terminal.take(prompt);
    // Nobody listens there.
    EXPECT_THAT(shell.type("export Transport sftp://u@127.0.0.1:1/p --password-file password\n", prompt),
                HasSubstr("Connection refused"));
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, aTransferIsPossibleAfterOneThatWasInterrupted) {
    Session shell = start("exports_as_told");
    shell.type("export one sftp://h/p\n", "Password: ");
    shell.type("\x03", "tev-agent: interrupted\r\n" + prompt);
    shell.type("export one sftp://h/p\n", "Password: ");
    shell.type("secret\n", "tev-agent: File transfer successful\r\n" + prompt);
    EXPECT_EQ(shell.end(), 0);
    EXPECT_EQ(contents(state + "/history"), "export one sftp://h/p\nexport one sftp://h/p\n") << "no password";
}

TEST_F(ShellTest, aSecondInterruptEndsItWhenACommandDoesNotEnd) {
    Session shell = start("endless_read");
    shell.type("get one version\n", "reading\r\n");
    // One that comes before the program has taken note of the first is none of its own.
    while (!shell.agent.hasEnded()) {
        shell.terminal.type("\x03");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(shell.agent.outcome().signal, SIGINT);
    EXPECT_TRUE(shell.terminal.hasEcho());
}

TEST_F(ShellTest, aSignalThatEndsProgramsEndsTheCommandTooAndACheck) {
    Session shell = start("endless_listing");
    shell.type("list\n", "listing\r\n");
    shell.agent.send(SIGTERM);
    EXPECT_EQ(shell.agent.outcome().status, 130);
    EXPECT_THAT(shell.terminal.shown(), EndsWith("tev-agent: interrupted\r\nstop\r\nterminate\r\n"));

    Session checking = start();
    checking.type(endlessCheck(), "passed   load.opens");
    checking.agent.send(SIGTERM);
    EXPECT_EQ(checking.agent.outcome().status, 130);
    EXPECT_THAT(checking.terminal.shown(), HasSubstr("tev-agent: interrupted\r\n"));
}

TEST_F(ShellTest, ctrlCEndsACheckOnly) {
    Session shell = start();
    shell.type(endlessCheck(), "passed   load.opens");
    EXPECT_THAT(shell.type("\x03", prompt), HasSubstr("tev-agent: interrupted\r\n"));
    shell.type("get Transport version\n", version);
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, arrowUpGivesTheLastLineAndCtrlRFindsOne) {
    Session shell = start();
    shell.type("get Transport version\n", version);
    shell.type("\x1b[A", "get Transport version");
    shell.type("\n", version);
    shell.type("get Nothing\n", prompt);
    shell.type("\x12Trans\n", version);
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, rememberedLinesAreThereInTheNextShell) {
    Session first = start();
    first.type("get Transport version\n", version);
    first.type(" get Equipment version\n", prompt);
    first.type("export A sftp://u:secret@h/p --nonsense\n", prompt);
    EXPECT_EQ(first.end(), 0);
    EXPECT_EQ(contents(state + "/history"), "get Transport version\n");
    Session second = start();
    second.type("\x1b[A\n", version);
    EXPECT_EQ(second.end(), 0);
}

TEST_F(ShellTest, endsWhenNobodyReadsTheResultsAnyMore) {
    Pipe unread(0);
    unread.closeReading();
    Terminal terminal;
    AgentProcess::Setting setting;
    setting.environment = {{"TERM", "xterm"}, {"TEV_STATE_DIR", state}};
    setting.in = setting.err = terminal.descriptor();
    setting.out = unread.writing();
    setting.terminal = terminal.path();
    AgentProcess agent({"--node", node.path(), "shell"}, setting);
    terminal.take(prompt);
    terminal.type("list\n");
    EXPECT_EQ(agent.outcome().status, 141);
    EXPECT_THAT(terminal.shown(), AllOf(Not(HasSubstr("tev-agent")), Not(HasSubstr(prompt))));
}

TEST_F(ShellTest, aHistoryThatCannotBeKeptIsSaidAndNoFailure) {
    folder.write("state", "");
    Session shell = start();
    EXPECT_THAT(shell.greeting, HasSubstr("history " + state + "/history cannot be kept"));
    EXPECT_THAT(shell.type("get Transport version\n", version), Not(HasSubstr("history")));
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, completesCommandsAndTheirOptions) {
    Session shell = start();
    shell.type("g\tTransport version\n", version);
    EXPECT_THAT(shell.type("help q\t\n", prompt), HasSubstr("Usage: quit"));
    shell.type("get Transport version --o\tj\t\n", "{\"version\":\"2.1.5\"}\r\n]}\r\n" + prompt);
    EXPECT_THAT(shell.type("export --\t\t", "--password-stdin"), AllOf(HasSubstr("--all"), Not(HasSubstr("--node"))));
    shell.drop();
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, completesSchemaIdsAndAttributes) {
    Session shell = start();
    shell.type("get Tr\tver\t\n", version);
    shell.type("get Transport version \t", "baseModelIdentifier   baseModelVersion      identifier\r\n");
    shell.terminal.take("schemaId              selectedModelOptions\r\n");
    shell.drop();
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, listsWhatAWordMayBecome) {
    Session shell = start();
    shell.type("get \t", "Equipment         ManagedElement=1  Plain             Transport\r\n");
    shell.terminal.take(prompt + "get ");
    shell.type("Transport version\n", version);
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, completesDnsLevelByLevelAndTheAttributesOfTheObject) {
    Session shell = start();
    shell.type("get Man\t,Sys\t,SysM=7,\tTr\t version\n", version);
    shell.type("get ManagedElement=1,Tr\t,Ser\t d\t\n", "\r\ndscp\r\n10\r\n" + prompt);
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, goesOnBelowADnThatIsWhole) {
    Session shell = start();
    shell.type("get Man\t", "agedElement=1");
    shell.type("\t", ",");
    shell.type("\t", "\r\nSystemFunctions=1  Transport=1\r\n");
    shell.terminal.take(prompt);
    shell.type("T\t\t\t d\t\n", "\r\ndscp\r\n10\r\n" + prompt);
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, offersTheSiblingsOfADnThatIsWholeBeforeWhatIsBelowIt) {
    node.writeObjects(R"(<managedObjects>
        <mo class="ManagedElement" id="1"><mo class="Transport" id="1"/></mo>
        <mo class="ManagedElement" id="10"/>
      </managedObjects>)");
    Session shell = start();
    shell.type("get ManagedElement=1\t", "\r\nManagedElement=1   ManagedElement=10\r\n");
    shell.type("0\t\t", "ManagedElement=10");
    shell.drop();
    EXPECT_EQ(shell.end(), 0);
}

// They were offered where they are taken for options.
TEST_F(ShellTest, offersNamesThatBeginWithADashBehindTheEndOfTheOptionsOnly) {
    node.writeModel("4.xml", R"(<mom name="-dash" version="7"/>)");
    folder.write("-file", "");
    folder.write("file", "");
    Session shell = start();
    shell.type("get \t", "\r\nEquipment         ManagedElement=1  Plain             Transport\r\n");
    shell.drop();
    shell.type("get -- -\tversion\n", "\r\nversion\r\n7\r\n" + prompt);
    shell.type("export --password-file \t", "\r\nfile    state/\r\n");
    shell.drop();
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, completesDnsOfTheObjectsOfOtherComponents) {
    node.writeObjects(R"(<managedObjects>
        <route class="Licence" parent="ManagedElement" component="TevSchemaMoService"/>
        <mo class="ManagedElement" id="1"/>
      </managedObjects>)");
    Session shell = start("exports_as_told");
    shell.type("get ManagedElement=1,\t", "Licence=");
    shell.type("\t", "Licence=one  Licence=two\r\n");
    shell.drop();
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, completesNamesOfFilesAndQuotesThem) {
    folder.write("pass word", "secret\n");
    Session shell = start("exports_as_told");
    shell.type("export o\tsftp://quiet/p --password-f\tpa\t\n", "(type 9, 1: secret)\r\n");
    shell.terminal.take(prompt);
    EXPECT_THAT(contents(state + "/history"), HasSubstr("--password-file pass\\ word"));
    shell.type("export o\tsftp://quiet/p --password-file 'pa\t\n", "(type 9, 1: secret)\r\n");
    shell.terminal.take(prompt);
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, aComponentThatFailsGivesNoCandidatesAndSaysNothing) {
    Session shell = start("listing_and_finish_throw");
    shell.terminal.type("get \tx\x03");
    EXPECT_THAT(shell.terminal.take("^C\r\n" + prompt), Not(HasSubstr("tev-agent")));
    EXPECT_THAT(shell.type("list\n", prompt), HasSubstr("tev-agent: component TevSchemaMoService threw in finish"));
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, ctrlCEndsTheSearchForCandidates) {
    Session shell = start("endless_listing");
    shell.type("get \t", "listing\r\n");
    shell.type("\x03", "abort\r\n");
    shell.terminal.take("\r\n" + prompt);
    shell.type("help quit\n", "Usage: quit");
    shell.terminal.take(prompt);
    EXPECT_EQ(shell.end(), 0);
}

TEST_F(ShellTest, aComponentThatCallsExitDuringCompletionLeavesTheTerminalWithItsEcho) {
    Session shell = start("exits_from_listing");
    shell.terminal.type("get \t");
    EXPECT_EQ(shell.agent.outcome().status, 3);
    EXPECT_TRUE(shell.terminal.hasEcho());
}

}  // namespace

}  // namespace TevTest
