// The command export as the program carries it out, with components that stand in for a transfer.

#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <tuple>
#include <utility>

#include "AgentProcess.h"
#include "Pipe.h"
#include "Terminal.h"
#include "TestNode.h"
#include "Wait.h"

namespace TevTest {

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ExportTest : public testing::Test {
protected:
    std::vector<std::string> arguments(const std::string& component, const std::vector<std::string>& words) const {
        std::vector<std::string> all = {"--node", node.path(), "--component",
                                        std::string(TEV_HOSTILE_COMPONENTS) + "/" + component + ".so", "export"};
        all.insert(all.end(), words.begin(), words.end());
        return all;
    }

    /// Exports with the password of a file.
    AgentOutcome run(const std::string& component, std::vector<std::string> words) const {
        words.insert(words.end(), {"--password-file", passwordFile});
        return AgentProcess::run(arguments(component, words));
    }

    /// How the component says that it was called.
    static std::string called(const std::string& dn, const std::string& uri, const std::string& password) {
        return "export " + dn + " (type 9, 1: " + uri + ") (type 9, 1: " + password + ")\n";
    }

    /// Waits until the agent has read what was written to its standard input, and waits for more, or has ended.
    static void waitUntilItWantsMore(AgentProcess& agent, const Pipe& input) {
        int unread = 1;
        waitUntil([&] { return agent.hasEnded() || (ioctl(input.reading(), FIONREAD, &unread) == 0 && unread == 0); });
        agent.waitUntilAsleep();
    }

    TestNode node;
    const TempFolder folder;
    const std::string passwordFile = folder.write("password", "secret\nnot this\n");
    const std::string success = "tev-agent: File transfer successful\n";
};

TEST_F(ExportTest, callsTheActionWithTheUriAndThePassword) {
    const AgentOutcome outcome = run("exports_as_told", {"one", "sftp://u@h:22/p/"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, called(TestNode::schemaDn("one"), "sftp://u@h:22/p/", "secret") + success);
}

TEST_F(ExportTest, takesADnAsItIs) {
    const std::string dn = "ManagedElement=9,SystemFunctions=1,SysM=1,Schema=two";
    EXPECT_EQ(run("exports_as_told", {"ManagedElement=9,SystemFunctions=1,SysM=1,Schema=two", "sftp://h/p"}).err,
              called(dn, "sftp://h/p", "secret") + success);
}

TEST_F(ExportTest, saysNothingWhenTheComponentDoesNot) {
    const AgentOutcome outcome = run("exports_as_told", {"one", "sftp://quiet/p"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, called(TestNode::schemaDn("one"), "sftp://quiet/p", "secret"));
}

TEST_F(ExportTest, aFailureNamesTheModelAndGivesTheOperatorsMessage) {
    const AgentOutcome outcome = run("exports_as_told", {"one", "sftp://fails/p"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, EndsWith("\ntev-agent: cannot export one: SFTP error: nobody is there\n"));
}

TEST_F(ExportTest, aFailureWithoutAMessageNamesTheComponentAndTheCode) {
    EXPECT_THAT(run("exports_as_told", {"one", "sftp://silent/p"}).err,
                EndsWith("\ntev-agent: cannot export one: component TevSchemaMoService returned -13\n"));
}

TEST_F(ExportTest, nobodyIsAskedForThePasswordOfAnObjectThatHasNoFile) {
    for (const std::string& dn : {std::string("ManagedElement=1,Transport=1"), std::string("ManagedElement=2"),
                                  TestNode::schemaDn("one") + ",Part=1"}) {
        const AgentOutcome outcome = AgentProcess::run(arguments("exports_as_told", {dn, "sftp://h/p"}));
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(
            outcome.err,
            "tev-agent: " + dn + " is no Schema instance, and has no file to export; list shows those that have one\n");
    }
}

TEST_F(ExportTest, passesADnOfAnotherClassOnToTheComponentThatOwnsIt) {
    node.writeObjects(R"(<managedObjects>
        <route class="Licence" parent="ManagedElement" component="TevSchemaMoService"/>
        <mo class="ManagedElement" id="1"/>
      </managedObjects>)");
    const std::string dn = "ManagedElement=1,Licence=5";
    EXPECT_EQ(run("exports_as_told", {dn, "sftp://h/p"}).err, called(dn, "sftp://h/p", "secret") + success);
}

TEST_F(ExportTest, anExceptionOfTheActionIsItsFailure) {
    const AgentOutcome outcome = run("exports_as_told", {"one", "sftp://throws/p"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err,
                EndsWith("\ntev-agent: cannot export one: component TevSchemaMoService threw in action: an "
                         "exception of type int\n"));
}

TEST_F(ExportTest, aTransactionThatFailsIsAFailure) {
    const AgentOutcome outcome = run("exports_as_told", {"one", "sftp://unwanted/p"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        outcome.err,
        EndsWith("\ntev-agent: cannot export one: the transaction failed: component TevSchemaMoService finds the "
                 "transaction invalid; File transfer successful\n"));
}

TEST_F(ExportTest, readsThePasswordFromStandardInput) {
    Pipe pipe(0);
    AgentProcess::Setting setting;
    setting.in = pipe.reading();
    AgentProcess agent(arguments("exports_as_told", {"one", "sftp://h/p", "--password-stdin"}), setting);
    ASSERT_EQ(write(pipe.writing(), "pass word\nmore", 14), 14);
    // The end of the line is enough.
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, called(TestNode::schemaDn("one"), "sftp://h/p", "pass word") + success);
}

TEST_F(ExportTest, needsAPassword) {
    const AgentOutcome empty =
        AgentProcess::run(arguments("exports_as_told", {"one", "sftp://h/p", "--password-stdin"}));
    EXPECT_EQ(empty.status, 2);
    EXPECT_EQ(empty.err, "tev-agent: standard input gives no password; it is the first line\n");
    const AgentOutcome none = AgentProcess::run(arguments("exports_as_told", {"one", "sftp://h/p"}));
    EXPECT_EQ(none.status, 2);
    EXPECT_EQ(none.err,
              "tev-agent: there is no terminal to ask for the password on; give it with --password-stdin or "
              "--password-file\n");
    const AgentOutcome noFile =
        AgentProcess::run(arguments("exports_as_told", {"one", "sftp://h/p", "--password-file", "/nowhere"}));
    EXPECT_EQ(noFile.status, 3);
    EXPECT_EQ(noFile.err,
              "tev-agent: the file of --password-file, /nowhere, cannot be used: No such file or directory\n");
}

TEST_F(ExportTest, asksForThePasswordOnTheTerminalWithoutEcho) {
    Terminal terminal;
    AgentProcess::Setting setting;
    setting.terminal = terminal.path();
    AgentProcess agent(arguments("exports_as_told", {"one", "sftp://h/p"}), setting);
    terminal.waitFor("Password: ");
    EXPECT_FALSE(terminal.hasEcho());
    terminal.type("typed\n");
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, called(TestNode::schemaDn("one"), "sftp://h/p", "typed") + success);
    EXPECT_EQ(terminal.shown(), "Password: \r\n");
    EXPECT_TRUE(terminal.hasEcho());
}

TEST_F(ExportTest, saysWhosePasswordIsAskedFor) {
    Terminal terminal;
    AgentProcess::Setting setting;
    setting.terminal = terminal.path();
    AgentProcess agent(arguments("exports_as_told", {"one", "sftp://te\x1bster:x@h:22/p"}), setting);
    terminal.waitFor("Password of te\\x1bster@h: ");
    terminal.type("typed\n");
    EXPECT_EQ(agent.outcome().status, 0);
}

TEST_F(ExportTest, nobodyIsAskedForThePasswordOfAUriThatIsNotForSftp) {
    for (const std::string uri : {"ftp://u@h/p", "/p", "sftp://u@h:port/p"}) {
        for (const std::vector<std::string>& words :
             {std::vector<std::string>{"Plain", uri}, {"--all", uri}, {TestNode::schemaDn("Plain"), uri}}) {
            std::vector<std::string> command = {"--node", node.path(), "export"};
            command.insert(command.end(), words.begin(), words.end());
            Terminal terminal;
            AgentProcess::Setting setting;
            setting.terminal = terminal.path();
            const AgentOutcome outcome = AgentProcess::run(command, setting);
            EXPECT_EQ(outcome.status, 2);
            EXPECT_EQ(outcome.err,
                      "tev-agent: models are sent to sftp://USER@HOST[:PORT]/PATH only; correct the URI\n");
            EXPECT_EQ(terminal.shown(), "");
        }
    }
}

TEST_F(ExportTest, aUriThatIsNotForSftpIsTheComponentsToJudgeWhereNobodyIsAsked) {
    EXPECT_THAT(run("exports_as_told", {"one", "ftp://u@h/p"}).err, EndsWith("secret)\n" + success));
    const AgentOutcome outcome =
        AgentProcess::run({"--node", node.path(), "export", "Plain", "ftp://u@h/p", "--password-file", passwordFile});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("tev-agent: cannot export Plain: Unsupported URI schema: ftp. "));
}

TEST_F(ExportTest, anObjectOfAnotherClassMayGoElsewhere) {
    node.writeObjects(R"(<managedObjects>
        <route class="Licence" parent="ManagedElement" component="TevSchemaMoService"/>
        <mo class="ManagedElement" id="1"/>
      </managedObjects>)");
    Terminal terminal;
    AgentProcess::Setting setting;
    setting.terminal = terminal.path();
    AgentProcess agent(arguments("exports_as_told", {"ManagedElement=1,Licence=two", "ftp://u@h/p"}), setting);
    terminal.waitFor("Password of u@h: ");
    terminal.type("typed\n");
    EXPECT_EQ(agent.outcome().status, 0);
}

TEST_F(ExportTest, anInterruptWhileThePasswordIsAskedForGivesTheTerminalItsEchoBack) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        Terminal terminal;
        AgentProcess::Setting setting;
        setting.terminal = terminal.path();
        AgentProcess agent(arguments("exports_as_told", {"one", "sftp://h/p"}), setting);
        terminal.waitFor("Password: ");
        agent.waitUntilAsleep();
        agent.send(signal);
        const AgentOutcome outcome = agent.outcome();
        EXPECT_EQ(outcome.status, 130);
        EXPECT_EQ(outcome.err, "tev-agent: interrupted\n");
        EXPECT_EQ(terminal.shown(), "Password: \r\n") << "what follows has a line of its own";
        EXPECT_TRUE(terminal.hasEcho());
    }
}

TEST_F(ExportTest, anInterruptTypedOnTheTerminalIsOneToo) {
    Terminal terminal;
    AgentProcess::Setting setting;
    setting.terminal = terminal.path();
    AgentProcess agent(arguments("exports_as_told", {"one", "sftp://h/p"}), setting);
    terminal.waitFor("Password: ");
    agent.waitUntilAsleep();
    terminal.type("half\x03");
    EXPECT_EQ(agent.outcome().status, 130);
    EXPECT_EQ(terminal.shown(), "Password: \r\n");
}

// A shell turns the echo on when a program has stopped, so that the rest of the password was shown; a quit left the
// terminal without echo.
TEST_F(ExportTest, noKeyStopsOrQuitsTheAgentWhileThePasswordIsAskedFor) {
    Terminal terminal;
    AgentProcess::Setting setting;
    setting.terminal = terminal.path();
    AgentProcess agent(arguments("exports_as_told", {"one", "sftp://h/p"}), setting);
    terminal.waitFor("Password: ");
    terminal.type(
        "a\x1a"
        "b\x1c"
        "c\n");
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, called(TestNode::schemaDn("one"), "sftp://h/p",
                                  "a\x1a"
                                  "b\x1c"
                                  "c") +
                               success);
    EXPECT_EQ(terminal.shown(), "Password: \r\n");
}

TEST_F(ExportTest, anInterruptEndsTheWaitForAPasswordOnStandardInput) {
    const Pipe pipe(0);
    AgentProcess::Setting setting;
    setting.in = pipe.reading();
    AgentProcess agent(arguments("exports_as_told", {"one", "sftp://h/p", "--password-stdin"}), setting);
    ASSERT_EQ(write(pipe.writing(), "half", 4), 4);
    waitUntilItWantsMore(agent, pipe);
    agent.send(SIGTERM);
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.err, "tev-agent: interrupted\n");
}

TEST_F(ExportTest, aHangUpThatIsIgnoredInterruptsNothing) {
    const Pipe pipe(0);
    AgentProcess::Setting setting;
    setting.in = pipe.reading();
    std::vector<std::string> words = arguments("exports_as_told", {"one", "sftp://h/p", "--password-stdin"});
    words.insert(words.begin(), TEV_AGENT_PROGRAM);
    AgentProcess agent(words, setting, "/usr/bin/nohup");
    ASSERT_EQ(write(pipe.writing(), "pass", 4), 4);
    waitUntilItWantsMore(agent, pipe);
    agent.send(SIGHUP);
    ASSERT_EQ(write(pipe.writing(), "word\n", 5), 5);
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, called(TestNode::schemaDn("one"), "sftp://h/p", "password") + success);
}

TEST_F(ExportTest, readsThePasswordFromANamedPipeOnceItIsWritten) {
    const std::string pipe = folder.path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    AgentProcess agent(arguments("exports_as_told", {"one", "sftp://h/p", "--password-file", pipe}), {});
    std::ofstream(pipe) << "piped\n";
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, called(TestNode::schemaDn("one"), "sftp://h/p", "piped") + success);
}

// It was taken for a file that cannot be opened.
TEST_F(ExportTest, anInterruptEndsTheWaitForANamedPipe) {
    const std::string pipe = folder.path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    AgentProcess agent(arguments("prints", {"one", "sftp://h/p", "--password-file", pipe}), {});
    agent.waitForError("started\n");
    agent.waitUntilAsleep();
    agent.send(SIGTERM);
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.err, EndsWith("tev-agent: interrupted\n"));
}

TEST_F(ExportTest, nobodyIsAskedForThePasswordOfAModelThatIsNotThere) {
    const AgentOutcome outcome = AgentProcess::run({"--node", node.path(), "export", "Nothing", "sftp://h/p"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "tev-agent: there is no " + TestNode::schemaDn("Nothing") + "; list shows those that there are\n");
}

TEST_F(ExportTest, exportsEveryModelSeveralAtATimeWithOneLineEach) {
    const AgentOutcome outcome = run("exports_in_company", {"--all", "--jobs", "2", "sftp://h/p"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 7);
    EXPECT_THAT(outcome.out, EndsWith("\n5 of 6 exported\n"));
    for (const std::string id : {"0", "1", "2", "3", "4", "5"}) {
        EXPECT_THAT(outcome.out, HasSubstr(id + (id == "2" ? ": failed" : ": exported") + ": two at a time for " +
                                           TestNode::schemaDn(id) + "\n"));
    }
}

TEST_F(ExportTest, exportsEveryModelToTheFolderThatTheUriNames) {
    const AgentOutcome outcome = run("exports_as_told", {"--all", "--jobs", "1", "sftp://h/p"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out,
              "one: exported: File transfer successful\ntwo: exported: File transfer successful\n"
              "2 of 2 exported\n");
    EXPECT_EQ(outcome.err, called(TestNode::schemaDn("one"), "sftp://h/p/", "secret") +
                               called(TestNode::schemaDn("two"), "sftp://h/p/", "secret"));
}

TEST_F(ExportTest, writesTheResultsOfEveryModelAsJsonInTheirOrder) {
    const AgentOutcome outcome = run("exports_in_company", {"--all", "--jobs=2", "--output=json", "sftp://h/p"});
    EXPECT_EQ(outcome.status, 1);
    const auto root = Poco::JSON::Parser().parse(outcome.out).extract<Poco::JSON::Object::Ptr>();
    const auto exports = root->getArray("exports");
    ASSERT_EQ(exports->size(), 6U);
    for (unsigned int i = 0; i < exports->size(); ++i) {
        const auto one = exports->getObject(i);
        EXPECT_EQ(one->getValue<std::string>("model"), std::to_string(i));
        EXPECT_EQ(one->getValue<bool>("exported"), i != 2);
        EXPECT_EQ(one->getValue<std::string>("message"), "two at a time for " + TestNode::schemaDn(std::to_string(i)));
    }
}

TEST_F(ExportTest, writesTheResultOfOneModelAsJson) {
    for (const auto& [uri, status, rest] :
         {std::tuple("sftp://h/p", 0, R"("exported":true,"message":"File transfer successful")"),
          std::tuple("sftp://quiet/p", 0, R"("exported":true,"message":"")"),
          std::tuple("sftp://fails/p", 1, R"("exported":false,"message":"SFTP error: nobody is there")")}) {
        const AgentOutcome outcome = run("exports_as_told", {"one", uri, "--output=json"});
        EXPECT_EQ(outcome.status, status);
        EXPECT_EQ(outcome.out, std::string("{\"exports\":[\n{\"model\":\"one\",") + rest + "}\n]}\n");
        EXPECT_EQ(outcome.err, called(TestNode::schemaDn("one"), uri, "secret"));
    }
    EXPECT_EQ(run("exports_as_told", {"one", "http://h/", "--output=json"}).out, "") << "wrong usage has no result";
}

TEST_F(ExportTest, showsOnATerminalWhatIsUnderWayAndForHowLong) {
    Terminal terminal;
    AgentProcess::Setting setting;
    setting.err = terminal.descriptor();
    node.writeModel("one.xml", "<mom name=\"one\">" + std::string(2000, ' ') + "</mom>");
    AgentProcess agent(arguments("exports_as_told", {"one", "sftp://h/p", "--password-file", passwordFile}), setting);
    EXPECT_EQ(agent.outcome().status, 0);
    EXPECT_THAT(terminal.shown(), AllOf(StartsWith("one, 2.0 kB: 0 s of 60 s"),
                                        EndsWith("\r\x1b[Ktev-agent: File transfer successful\r\n")));
}

TEST_F(ExportTest, showsNoMoreThanTheTerminalHasRoomFor) {
    Terminal terminal;
    terminal.setWidth(15);
    AgentProcess::Setting setting;
    setting.err = terminal.descriptor();
    AgentProcess agent(arguments("exports_as_told", {"one", "sftp://h/p", "--password-file", passwordFile}), setting);
    EXPECT_EQ(agent.outcome().status, 0);
    EXPECT_THAT(terminal.shown(), StartsWith("one: 0 s of 60"));
    EXPECT_THAT(terminal.shown(), Not(HasSubstr("60 ")));
}

// Characters of double width went on into a line that nothing took away.
TEST_F(ExportTest, showsNoMoreCharactersOfDoubleWidthThanTheTerminalHasRoomFor) {
    Terminal terminal;
    terminal.setWidth(6);
    AgentProcess::Setting setting;
    setting.err = terminal.descriptor();
    const std::string wide = "\xe4\xb8\xad";
    AgentProcess agent(
        arguments("exports_as_told", {wide + wide + wide, "sftp://h/p", "--password-file", passwordFile}), setting);
    EXPECT_EQ(agent.outcome().status, 0);
    EXPECT_THAT(terminal.shown(), StartsWith(wide + wide));
    EXPECT_THAT(terminal.shown(), Not(StartsWith(wide + wide + wide)));
}

TEST_F(ExportTest, showsABarOnATerminalForEveryModel) {
    Terminal terminal;
    AgentProcess::Setting setting;
    setting.err = terminal.descriptor();
    setting.out = terminal.descriptor();
    AgentProcess agent(
        arguments("exports_in_company", {"--all", "--jobs", "2", "sftp://h/p", "--password-file", passwordFile}),
        setting);
    EXPECT_EQ(agent.outcome().status, 1);
    EXPECT_THAT(terminal.shown(), StartsWith("[....................] 0 of 6, 0 failed, 0 s\r\x1b[K"));
    for (const std::string id : {"0", "1", "2", "3", "4", "5"}) {
        EXPECT_THAT(terminal.shown(), testing::AnyOf(HasSubstr("\r\x1b[K" + id + ": "), HasSubstr("\n" + id + ": ")));
    }
    EXPECT_THAT(terminal.shown(), HasSubstr(" of 6, 1 failed, "));
}

// A second in which nothing is left is not over.
TEST_F(ExportTest, showsATimeoutRoundedUp) {
    const TempFolder other;
    for (const auto& [timeout, text] : {std::pair("1500", "0 s of 2 s"), std::pair("1", "0 s of 1 s")}) {
        Terminal terminal;
        AgentProcess::Setting setting;
        setting.err = terminal.descriptor();
        const std::string file = other.write("libtev_schema_populator.cfg",
                                             std::string("<configuration><TevSchemaMoService><sftpTimeout>") + timeout +
                                                 "</sftpTimeout></TevSchemaMoService></configuration>");
        AgentProcess agent(
            arguments("exports_as_told", {"one", "sftp://h/p", "--config", file, "--password-file", passwordFile}),
            setting);
        EXPECT_EQ(agent.outcome().status, 0);
        EXPECT_THAT(terminal.shown(), StartsWith(std::string("one: ") + text));
    }
}

TEST_F(ExportTest, nobodyIsAskedForThePasswordOfANodeWithoutModels) {
    const TempFolder empty;
    for (const auto& [format, result] :
         {std::pair("--output=table", ""), std::pair("--output=json", "{\"exports\":[]}\n")}) {
        const AgentOutcome outcome =
            AgentProcess::run({"--models", empty.path(), "export", "--all", "sftp://h/p", format});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.out, result);
        EXPECT_EQ(outcome.err, "tev-agent: there is no model to export; files of models belong into " +
                                   empty.path().string() + "\n");
    }
}

// The first thread that could not be made ended the command, and no result was told.
TEST_F(ExportTest, exportsEveryModelWhereTheSystemGivesFewThreads) {
    const AgentOutcome outcome = run("exports_without_threads", {"--all", "--jobs", "2", "sftp://h/p"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, HasSubstr("0: exported: in company\n"));
    EXPECT_THAT(outcome.out, HasSubstr("1: exported: in company\n"));
    EXPECT_THAT(outcome.out,
                EndsWith("2: exported: by the main thread\n3: exported: by the main thread\n4 of 4 exported\n"));
}

TEST_F(ExportTest, resultsThatCannotBeWrittenKeepNoModelFromBeingExported) {
    AgentProcess::Setting setting;
    setting.out = open("/dev/full", O_WRONLY | O_CLOEXEC);
    for (const std::string format : {"table", "json"}) {
        AgentProcess agent(arguments("exports_as_told", {"--all", "--jobs", "1", "sftp://h/p", "--output", format,
                                                         "--password-file", passwordFile}),
                           setting);
        const AgentOutcome outcome = agent.outcome();
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, called(TestNode::schemaDn("one"), "sftp://h/p/", "secret") +
                                   called(TestNode::schemaDn("two"), "sftp://h/p/", "secret") +
                                   "tev-agent: cannot write to standard output: No space left on device\n");
    }
    close(setting.out);
}

TEST_F(ExportTest, aReaderWhoHasGoneAwayKeepsNoModelFromBeingExported) {
    Pipe unread(0);
    unread.closeReading();
    AgentProcess::Setting setting;
    setting.out = unread.writing();
    for (const std::string format : {"table", "json"}) {
        const std::vector<std::string> words = {"--all", "--jobs",          "2",          "--output",
                                                format,  "--password-file", passwordFile, ""};
        const auto exportTo = [&](const std::string& component, const std::string& uri) {
            std::vector<std::string> all = words;
            all.back() = uri;
            return AgentProcess::run(arguments(component, all), setting);
        };
        const AgentOutcome well = exportTo("exports_as_told", "sftp://h/p/");
        EXPECT_EQ(well.status, 141);
        EXPECT_THAT(well.err, AllOf(HasSubstr(called(TestNode::schemaDn("one"), "sftp://h/p/", "secret")),
                                    HasSubstr(called(TestNode::schemaDn("two"), "sftp://h/p/", "secret")),
                                    Not(HasSubstr("tev-agent"))));
        const AgentOutcome badly = exportTo("exports_in_company", "sftp://h/p/");
        EXPECT_EQ(badly.status, 1);
        EXPECT_EQ(badly.err, "tev-agent: not every model was exported, and nobody reads which\n");
    }
}

TEST_F(ExportTest, aVersionThatCannotBeReadKeepsNoModelFromBeingExported) {
    const std::string sentence = "tev-agent: there are several versions of one\n";
    const AgentOutcome every = run("exports_unreadable", {"--all", "sftp://h/p"});
    EXPECT_EQ(every.out, "one: exported\n1 of 1 exported\n");
    EXPECT_EQ(every.err, sentence);
    const AgentOutcome one = run("exports_unreadable", {"one", "sftp://h/p"});
    EXPECT_EQ(one.status, 0);
    EXPECT_EQ(one.err, sentence);
}

}  // namespace

}  // namespace TevTest
