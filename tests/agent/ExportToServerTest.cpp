// The command export against a real SFTP server.

#include <gmock/gmock.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>

#include "AgentProcess.h"
#include "FileText.h"
#include "SftpServer.h"
#include "TcpProxy.h"
#include "TempFolder.h"
#include "Terminal.h"
#include "TestNode.h"
#include "Wait.h"

namespace TevTest {

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::filesystem::path models = std::filesystem::path(TEV_EXAMPLE_NODE) / "models";

/// A connection that stops half-way through the largest model of the example node.
constexpr std::size_t halfWay = 2000000;

class ExportToServerTest : public testing::Test {
protected:
    ExportToServerTest() { setting.environment["TEV_STATE_DIR"] = state.path(); }

    static std::vector<std::string> arguments(const std::vector<std::string>& words) {
        std::vector<std::string> all = {"--node", TEV_EXAMPLE_NODE, "export"};
        all.insert(all.end(), words.begin(), words.end());
        return all;
    }

    std::vector<std::string> withPassword(std::vector<std::string> words) const {
        words.insert(words.end(), {"--password-file", passwordFile});
        return arguments(words);
    }

    std::string uri(const std::string& port, const std::string& name) const {
        return "sftp://" + server.user() + "@127.0.0.1:" + port + server.folder().string() + "/" + name;
    }

    std::string uri(const std::string& name) const { return uri(server.port(), name); }

    /// Waits until the agent has sent so much, or has ended.
    static void waitForBytes(const TcpProxy& proxy, AgentProcess& agent, std::size_t bytes) {
        waitUntil([&] { return proxy.bytes() >= bytes || agent.hasEnded(); });
    }

    /// How often `part` stands in `text`.
    static int count(const std::string& text, const std::string& part) {
        int found = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
            ++found;
        }
        return found;
    }

    /// Whether there is a process that an export through that port began.
    static bool hasClient(const std::string& port) {
        const auto processes = std::filesystem::directory_iterator("/proc");
        return std::any_of(begin(processes), end(processes), [&port](const auto& entry) {
            return contents(entry.path() / "cmdline").find("Port=" + port) != std::string::npos;
        });
    }

    SftpServer server;
    const TempFolder state;
    const TempFolder folder;
    const std::string passwordFile = folder.write("password", server.password());
    AgentProcess::Setting setting;
};

TEST_F(ExportToServerTest, theFileIsThereByteForByte) {
    const AgentOutcome outcome = AgentProcess::run(withPassword({"PerformanceModel", uri("copy.xml")}), setting);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "tev-agent: File transfer successful\n");
    EXPECT_THAT(server.names(), ElementsAre("copy.xml"));
    EXPECT_TRUE(contents(server.folder() / "copy.xml") == contents(models / "PerformanceModel.xml"));
}

TEST_F(ExportToServerTest, aWrongPasswordIsToldAndThePasswordIsNot) {
    const std::string wrong = folder.write("wrong", "shibboleth\n");
    std::vector<std::string> words = {"--log-level", "8"};
    const std::vector<std::string> command = arguments({"TransportModel", uri("copy.xml"), "--password-file", wrong});
    words.insert(words.end(), command.begin(), command.end());
    const AgentOutcome outcome = AgentProcess::run(words, setting);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err,
                AllOf(HasSubstr("\ntev-agent: cannot export TransportModel: SFTP error: the server 127.0.0.1 does not "
                                "accept the user tester with this password; check both\n"),
                      Not(HasSubstr("shibboleth"))));
    EXPECT_THAT(server.names(), IsEmpty());
}

TEST_F(ExportToServerTest, aModelThatIsNotThereReachesNoServer) {
    const AgentOutcome outcome = AgentProcess::run(withPassword({"Nothing", uri("copy.xml")}), setting);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "tev-agent: there is no ManagedElement=1,SystemFunctions=1,SysM=1,Schema=Nothing; list shows those "
              "that there are\n");
    EXPECT_THAT(server.log(), Not(HasSubstr("Connection from")));
}

TEST_F(ExportToServerTest, takesThePasswordThatIsTypedOnTheTerminal) {
    Terminal terminal;
    setting.terminal = terminal.path();
    AgentProcess agent(arguments({"TransportModel", uri("copy.xml")}), setting);
    const std::string question = "Password of " + server.user() + "@127.0.0.1: ";
    terminal.waitFor(question);
    terminal.type(server.password() + "\n");
    EXPECT_EQ(agent.outcome().status, 0);
    EXPECT_EQ(terminal.shown(), question + "\r\n");
    EXPECT_EQ(contents(server.folder() / "copy.xml"), contents(models / "TransportModel.xml"));
}

TEST_F(ExportToServerTest, exportsEveryModelOfTheNode) {
    const AgentOutcome outcome = AgentProcess::run(withPassword({"--all", "--jobs", "3", uri("")}), setting);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(models)) {
        ++count;
        EXPECT_THAT(outcome.out, HasSubstr(entry.path().stem().string() + ": exported: File transfer successful\n"));
        EXPECT_TRUE(contents(server.folder() / entry.path().filename()) == contents(entry.path())) << entry.path();
    }
    EXPECT_EQ(server.names().size(), count);
    EXPECT_EQ(static_cast<std::size_t>(std::count(outcome.out.begin(), outcome.out.end(), '\n')), count + 1);
}

TEST_F(ExportToServerTest, aModelThatFailsDoesNotStopTheOthers) {
    std::filesystem::create_directory(server.folder() / "TransportModel.xml");
    const AgentOutcome outcome = AgentProcess::run(withPassword({"--all", uri("")}), setting);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("TransportModel: failed: SFTP error: "),
                                   HasSubstr("SoftwareModel: exported: File transfer successful\n")));
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 15);
    EXPECT_THAT(outcome.out, EndsWith("\n13 of 14 exported\n"));
}

TEST_F(ExportToServerTest, anInterruptInTheMiddleLeavesNothingOrNamesIt) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        TcpProxy proxy("127.0.0.1", server.port());
        proxy.slowDownTo(halfWay);
        AgentProcess agent(withPassword({"PerformanceModel", uri(proxy.port(), "copy.xml")}), setting);
        waitForBytes(proxy, agent, halfWay / 2);
        EXPECT_EQ(server.names().size(), 1U) << "it is under way";
        EXPECT_TRUE(hasClient(proxy.port()));
        agent.send(signal);
        const AgentOutcome outcome = agent.outcome();
        EXPECT_EQ(outcome.status, 130);
        EXPECT_THAT(outcome.err,
                    StartsWith("tev-agent: cannot export PerformanceModel: SFTP error: the transfer was interrupted"));
        // A machine may be too slow to remove it within the second that there is for that.
        for (const std::string& left : server.names()) {
            EXPECT_THAT(outcome.err, EndsWith("/" + left + " may be left on the server\n"));
            std::filesystem::remove(server.folder() / left);
        }
        EXPECT_FALSE(hasClient(proxy.port()));
    }
}

TEST_F(ExportToServerTest, anInterruptEndsATransferThatHangsAndTellsWhatMayBeLeft) {
    TcpProxy proxy("127.0.0.1", server.port());
    proxy.holdAfter(halfWay);
    AgentProcess agent(withPassword({"PerformanceModel", uri(proxy.port(), "copy.xml")}), setting);
    waitForBytes(proxy, agent, halfWay);
    agent.send(SIGINT);
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("SFTP error: the transfer was interrupted; "),
                                   EndsWith(" may be left on the server\n")));
    EXPECT_FALSE(hasClient(proxy.port()));
}

TEST_F(ExportToServerTest, anInterruptStopsEveryModelAndTellsWhichWereNotBegun) {
    for (const std::string format : {"table", "json"}) {
        TcpProxy proxy("127.0.0.1", server.port());
        proxy.holdAfter(0);
        AgentProcess agent(withPassword({"--all", "--jobs", "3", "--output", format, uri(proxy.port(), "")}), setting);
        waitUntil([&] { return proxy.connections() >= 3 || agent.hasEnded(); });
        agent.send(SIGINT);
        const AgentOutcome outcome = agent.outcome();
        EXPECT_EQ(outcome.status, 130);
        EXPECT_EQ(outcome.err, "tev-agent: interrupted\n");
        EXPECT_EQ(count(outcome.out, "the transfer was interrupted"), 3) << outcome.out;
        EXPECT_EQ(count(outcome.out, "not begun"), 11) << outcome.out;
        EXPECT_EQ(count(outcome.out, format == "table" ? ": failed: " : "\"exported\":false"), 14) << outcome.out;
        EXPECT_EQ(count(outcome.out, "0 of 14 exported"), format == "table" ? 1 : 0) << outcome.out;
        EXPECT_THAT(server.names(), IsEmpty());
        EXPECT_FALSE(hasClient(proxy.port()));
    }
}

TEST_F(ExportToServerTest, ofSeveralVersionsTheOneThatIsSentIsTold) {
    const TestNode node;
    node.writeModel("4.xml", R"(<mom name="Transport" version="3"/>)");
    node.writeModel("5.xml", R"(<mom name="Plain" version="4"/>)");
    const std::vector<std::string> files = {"--node", node.path(), "export", "--password-file", passwordFile};
    std::vector<std::string> words = files;
    words.insert(words.end(), {"Transport", uri("copy.xml")});
    const AgentOutcome one = AgentProcess::run(words, setting);
    EXPECT_EQ(one.status, 0);
    EXPECT_EQ(one.err,
              "tev-agent: there are several versions of Transport (chosen: 2.1.5)\n"
              "tev-agent: File transfer successful\n");
    EXPECT_EQ(contents(server.folder() / "copy.xml"), contents(node.path() + "/models/1.xml"));
    words = files;
    words.insert(words.end(), {"--all", uri("")});
    const AgentOutcome every = AgentProcess::run(words, setting);
    EXPECT_EQ(every.status, 0);
    EXPECT_EQ(every.err,
              "tev-agent: there are several versions of Plain (chosen: the one without a version), Transport (chosen: "
              "2.1.5)\n");
    EXPECT_THAT(server.names(), ElementsAre("1.xml", "2.xml", "3.xml", "copy.xml"));
}

TEST_F(ExportToServerTest, aTerminalShowsHowLongATransferHasTaken) {
    TcpProxy proxy("127.0.0.1", server.port());
    proxy.holdAfter(halfWay);
    Terminal terminal;
    setting.err = terminal.descriptor();
    AgentProcess agent(withPassword({"PerformanceModel", uri(proxy.port(), "copy.xml")}), setting);
    EXPECT_THAT(terminal.waitFor("1 s of 120 s"), StartsWith("PerformanceModel, 3."));
    proxy.resume();
    EXPECT_EQ(agent.outcome().status, 0);
}

}  // namespace

}  // namespace TevTest
