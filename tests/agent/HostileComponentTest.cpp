// The agent and components that break the contract, one fault each: one clear sentence, which names the guilty side,
// and an exit status.

#include <gmock/gmock.h>
#include <signal.h>

#include <chrono>
#include <thread>
#include <utility>

#include "AgentProcess.h"
#include "TestNode.h"

namespace TevTest {

namespace {

using testing::HasSubstr;

std::string library(const std::string& fault) {
    return std::string(TEV_HOSTILE_COMPONENTS) + "/" + fault + ".so";
}

/// What the agent says when it can make no use of a library.
std::string cannotUse(const std::string& fault, const std::string& reason) {
    return "tev-agent: cannot use component library " + library(fault) + ": " + reason + "\n";
}

/// What the agent says of a library that is unloaded with its component still registered.
std::string leftRegistered(const std::string& fault) {
    return "tev-agent: component library " + library(fault) + " left component TevSchemaMoService registered\n";
}

class HostileComponentTest : public testing::Test {
protected:
    std::vector<std::string> arguments(const std::string& fault, const std::vector<std::string>& command) const {
        std::vector<std::string> words = {"--node", node.path(), "--component", library(fault)};
        words.insert(words.end(), command.begin(), command.end());
        return words;
    }

    AgentOutcome run(const std::string& fault, const std::vector<std::string>& command) const {
        return AgentProcess::run(arguments(fault, command));
    }

    /// The agent does not start with this component, and says so in exactly this way.
    void expectNotStarted(const std::string& fault, const std::string& said) const {
        const AgentOutcome outcome = run(fault, {"list"});
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.err, said);
        EXPECT_EQ(outcome.out, "");
    }

    TestNode node;
};

TEST_F(HostileComponentTest, lacksDalLCMinit) {
    expectNotStarted("no_init", cannotUse("no_init", "undefined symbol: dalLCMinit"));
}

TEST_F(HostileComponentTest, lacksDalLCMterminate) {
    expectNotStarted("no_terminate", cannotUse("no_terminate", "undefined symbol: dalLCMterminate"));
}

TEST_F(HostileComponentTest, throwsAnIntWhileItIsLoaded) {
    expectNotStarted(
        "load_throws_int",
        cannotUse("load_throws_int", "component load_throws_int.so threw in dlopen: an exception of type int"));
}

TEST_F(HostileComponentTest, throwsAnIntWhileItIsUnloadedOnceTheResultsAreOut) {
    const AgentOutcome outcome = run("unload_throws_int", {"get", "one", "schemaId"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "schemaId\nvalue\n");
    EXPECT_EQ(outcome.err, "tev-agent: component unload_throws_int.so threw in dlclose: an exception of type int\n");
}

TEST_F(HostileComponentTest, returnsACodeFromInit) {
    expectNotStarted("init_returns_code", cannotUse("init_returns_code", "dalLCMinit returned -17"));
}

TEST_F(HostileComponentTest, throwsAnIntFromInit) {
    expectNotStarted(
        "init_throws_int",
        cannotUse("init_throws_int", "component init_throws_int.so threw in dalLCMinit: an exception of type int"));
}

TEST_F(HostileComponentTest, isRegisteredButFailsToInitialize) {
    expectNotStarted("init_fails_late",
                     leftRegistered("init_fails_late") + cannotUse("init_fails_late", "dalLCMinit returned -17"));
}

TEST_F(HostileComponentTest, leavesNoTableToThoseThatAreTerminatedAfterIt) {
    const std::string threw = "tev-agent: component terminate_throws.so threw in dalLCMterminate: too late\n";
    for (const auto& [fault, said] : {std::pair("stays_registered", leftRegistered("stays_registered")),
                                      std::pair("terminate_throws", threw + leftRegistered("terminate_throws"))}) {
        const AgentOutcome outcome = AgentProcess::run({"--node", node.path(), "--component", library("looks_up_late"),
                                                        "--component", library(fault), "get", "one", "schemaId"});
        EXPECT_EQ(outcome.status, 0) << fault;
        EXPECT_EQ(outcome.signal, 0) << fault;
        EXPECT_EQ(outcome.out, "schemaId\nvalue\n") << fault;
        EXPECT_EQ(outcome.err, said + "not found\n") << fault;
    }
}

TEST_F(HostileComponentTest, registersNothing) {
    expectNotStarted("registers_nothing", cannotUse("registers_nothing", "it registered no component"));
}

TEST_F(HostileComponentTest, registersANullTable) {
    expectNotStarted("null_component", cannotUse("null_component", "a null component table was registered"));
}

TEST_F(HostileComponentTest, hasANullArray) {
    expectNotStarted("null_array", cannotUse("null_array",
                                             "component TevSchemaMoService has no interface array in its "
                                             "DalMgmtSpiComponent table"));
}

TEST_F(HostileComponentTest, lacksAFunctionInATable) {
    expectNotStarted("null_function", cannotUse("null_function",
                                                "component TevSchemaMoService has no nextMo in its "
                                                "DalOamSpiManagedObject table"));
}

TEST_F(HostileComponentTest, registersInAnotherVersion) {
    expectNotStarted("wrong_component_version",
                     cannotUse("wrong_component_version",
                               "component TevSchemaMoService offers DalMgmtSpiComponent version 3, but this agent "
                               "knows version 2"));
}

TEST_F(HostileComponentTest, offersATableOfAnotherVersion) {
    expectNotStarted("wrong_table_version",
                     cannotUse("wrong_table_version",
                               "component TevSchemaMoService offers DalOamSpiManagedObject version 7, but this agent "
                               "knows version 1"));
}

TEST_F(HostileComponentTest, failsToStartAndIsStoppedAllTheSame) {
    expectNotStarted("start_fails",
                     "stopped all the same\ntev-agent: component TevSchemaMoService returned -5 from start\n");
}

TEST_F(HostileComponentTest, throwsFromStart) {
    expectNotStarted("start_throws", "tev-agent: component TevSchemaMoService threw in start: out of order\n");
}

TEST_F(HostileComponentTest, throwsAnIntFromStart) {
    expectNotStarted("start_throws_int",
                     "tev-agent: component TevSchemaMoService threw in start: an exception of type int\n");
}

TEST_F(HostileComponentTest, dependsOnWhatNobodyOffers) {
    expectNotStarted(
        "unmet_dependency",
        "tev-agent: component TevSchemaMoService depends on NobodysService/Nothing version 4, which nobody "
        "offers; --component loads what does\n");
}

TEST_F(HostileComponentTest, twoDependOnEachOtherInACircle) {
    const AgentOutcome outcome = AgentProcess::run(
        {"--node", node.path(), "--component", library("circle_left"), "--component", library("circle_right"), "list"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.err,
              "tev-agent: components depend on each other in a circle: LeftService -> RightService -> LeftService; "
              "leave one of them out\n");
}

TEST_F(HostileComponentTest, twoOfOneName) {
    const AgentOutcome outcome = AgentProcess::run(
        {"--node", node.path(), "--component", library("prints"), "--component", library("votes_no"), "list"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.err, HasSubstr(cannotUse("votes_no", "component TevSchemaMoService is registered already")));
}

TEST_F(HostileComponentTest, throwsFromStopOnceTheResultsAreOut) {
    const AgentOutcome outcome = run("stop_throws", {"get", "one", "schemaId"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "schemaId\nvalue\n");
    EXPECT_EQ(outcome.err, "tev-agent: component TevSchemaMoService threw in stop: will not\n");
}

TEST_F(HostileComponentTest, neverReturnsFromStopWhichEndsTheProgramOnceTheResultsAreOut) {
    const auto begin = std::chrono::steady_clock::now();
    const AgentOutcome outcome = run("endless_stop", {"get", "one", "schemaId"});
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.out, "schemaId\nvalue\n");
    EXPECT_EQ(outcome.err, "tev-agent: component TevSchemaMoService did not return from stop within 10 seconds\n");
}

TEST_F(HostileComponentTest, callsExitWhileItIsStarted) {
    expectNotStarted("exits_from_start", "no licence\ntev-agent: component TevSchemaMoService called exit in start\n");
}

TEST_F(HostileComponentTest, callsExitInAThreadOfItsOwn) {
    expectNotStarted("exits_from_thread", "tev-agent: a component called exit in a thread of its own\n");
}

TEST_F(HostileComponentTest, callsExitWhileItIsRead) {
    const AgentOutcome outcome = run("exits_from_read", {"list"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "tev-agent: component TevSchemaMoService called exit in getMoAttribute\n");
}

TEST_F(HostileComponentTest, callsExitWhileItIsStoppedOnceTheResultsAreOut) {
    const AgentOutcome outcome = run("exits_from_stop", {"get", "one", "schemaId"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.out, "schemaId\nvalue\n");
    EXPECT_EQ(outcome.err, "tev-agent: component TevSchemaMoService called exit in stop\n");
}

TEST_F(HostileComponentTest, closesTheDescriptorOfTheResults) {
    const AgentOutcome outcome = run("closes_descriptors", {"get", "one", "schemaId"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "tev-agent: cannot write to standard output: Bad file descriptor\n");
}

TEST_F(HostileComponentTest, printsOnStandardOutputWhichGoesToStandardError) {
    const AgentOutcome outcome = run("prints", {"get", "one", "schemaId"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "schemaId\nvalue\n");
    for (const char* printed : {"loaded\n", "initialized\n", "started\n", "finished\n", "unloaded\n"}) {
        EXPECT_THAT(outcome.err, HasSubstr(printed));
    }
}

TEST_F(HostileComponentTest, joinsNoTransaction) {
    const AgentOutcome outcome = run("join_fails", {"list"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "tev-agent: cannot list the Schema instances under ManagedElement=1,SystemFunctions=1,SysM=7: component "
              "TevSchemaMoService returned -12 from join\n");
    EXPECT_EQ(outcome.out, "");
}

TEST_F(HostileComponentTest, findsTheTransactionInvalid) {
    const AgentOutcome outcome = run("votes_no", {"list"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "tev-agent: the transaction failed: component TevSchemaMoService finds the transaction invalid\n");
    EXPECT_EQ(outcome.out, "");
}

TEST_F(HostileComponentTest, throwsAnIntFromAListing) {
    const AgentOutcome outcome = run("listing_throws_int", {"list"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "tev-agent: cannot list the Schema instances under ManagedElement=1,SystemFunctions=1,SysM=7: component "
              "TevSchemaMoService threw in nextMo: an exception of type int\n");
}

TEST_F(HostileComponentTest, throwsAnIntFromAReadWhichHidesThatInstanceOnly) {
    const AgentOutcome outcome = run("read_throws_int", {"list"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "tev-agent: cannot read attribute version of " + TestNode::schemaDn("one") +
                               ": component TevSchemaMoService threw in getMoAttribute: an exception of type int\n");
    EXPECT_EQ(outcome.out,
              "schemaId  identifier  baseModelIdentifier  version  baseModelVersion  selectedModelOptions\n"
              "value     value       value                value    value             value\n");
}

TEST_F(HostileComponentTest, returnsACodeFromAReadOfAnInstanceThatIsThere) {
    const AgentOutcome outcome = run("read_fails", {"get", "one", "schemaId"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "tev-agent: cannot read attribute schemaId of " + TestNode::schemaDn("one") +
                               ": component TevSchemaMoService returned -13\n");
    EXPECT_THAT(run("read_fails", {"get", "one", "version"}).err,
                HasSubstr(": component TevSchemaMoService returned -10 (no memory)\n"));
}

TEST_F(HostileComponentTest, givesNoContainer) {
    const AgentOutcome outcome = run("null_value", {"get", "one", "version"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "tev-agent: cannot read attribute version of " + TestNode::schemaDn("one") +
                               ": there is no value container\n");
}

TEST_F(HostileComponentTest, givesValuesThatReachForTheTerminal) {
    EXPECT_EQ(run("strange_values", {"get", "one", "version"}).out, "version\nred\\x1b[31m\\nnext \xef\xbf\xbd\n");
    EXPECT_THAT(run("strange_values", {"--output", "json", "get", "one", "version"}).out,
                HasSubstr("red\\u001B[31m\\nnext \\uFFFD\""));
}

TEST_F(HostileComponentTest, hasAMessageForTheOperator) {
    const AgentOutcome outcome = run("posts_message", {"get", "one", "schemaId", "version"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "tev-agent: mind the gap\n");
}

TEST_F(HostileComponentTest, anInterruptEndsAnEndlessListingInGoodOrder) {
    AgentProcess agent(arguments("endless_listing", {"list"}));
    agent.waitForError("listing\n");
    agent.send(SIGINT);
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.err, "listing\nabort\nfinish\nstop\nterminate\ntev-agent: interrupted\n");
    EXPECT_EQ(outcome.out, "");
}

TEST_F(HostileComponentTest, aSecondInterruptEndsAComponentThatHangs) {
    for (const int second : {SIGINT, SIGTERM}) {
        AgentProcess agent(arguments("endless_start", {"list"}));
        agent.waitForError("starting\n");
        agent.send(SIGINT);
        for (int interrupts = 0; interrupts < 1000 && !agent.hasEnded(); ++interrupts) {
            agent.send(second);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        ASSERT_TRUE(agent.hasEnded());
        EXPECT_EQ(agent.outcome().signal, second);
    }
}

TEST_F(HostileComponentTest, aHangUpCountsOnceHoweverOftenItComes) {
    AgentProcess agent(arguments("endless_start", {"list"}));
    agent.waitForError("starting\n");
    for (int hangUps = 0; hangUps < 20 && !agent.hasEnded(); ++hangUps) {
        agent.send(SIGHUP);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_FALSE(agent.hasEnded());
    agent.send(SIGINT);
    EXPECT_EQ(agent.outcome().signal, SIGINT);
}

}  // namespace

}  // namespace TevTest
