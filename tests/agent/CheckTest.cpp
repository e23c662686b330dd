// The program's check: what it says of the component, of the example, and of components with one fault each.

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "AgentProcess.h"
#include "FileText.h"
#include "Pipe.h"
#include "TempFolder.h"
#include "Wait.h"

namespace TevTest {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Item {
    std::string id;
    std::string description;
    std::string result;
    std::string remark;
};

std::string library(const std::string& fault) {
    return std::string(TEV_HOSTILE_COMPONENTS) + "/" + fault + ".so";
}

std::vector<Item> itemsIn(const std::string& json) {
    std::vector<Item> items;
    const auto document = Poco::JSON::Parser().parse(json).extract<Poco::JSON::Object::Ptr>();
    const Poco::JSON::Array::Ptr checks = document->getArray("checks");
    for (unsigned int i = 0; i < checks->size(); ++i) {
        const Poco::JSON::Object::Ptr check = checks->getObject(i);
        items.push_back({check->getValue<std::string>("id"), check->getValue<std::string>("description"),
                         check->getValue<std::string>("result"), check->getValue<std::string>("remark")});
    }
    return items;
}

/// With time for a busy machine.
AgentOutcome check(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {"--output", "json", "check", "--time-limit", "100"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return AgentProcess::run(words);
}

/// Item and result of all that did not pass, but for what was skipped behind it.
using Findings = std::map<std::string, std::string>;

Findings findingsIn(const std::vector<Item>& items) {
    Findings findings;
    for (const Item& item : items) {
        if (item.result != "passed" && item.remark.find("did not pass") == std::string::npos) {
            findings[item.id] = item.result;
        }
    }
    return findings;
}

const std::vector<std::string>& allIds() {
    static const std::vector<std::string> ids = [] {
        std::vector<std::string> found;
        for (const Item& item : itemsIn(check({TEV_COMPONENT_LIBRARY, "--in-process"}).out)) {
            found.push_back(item.id);
        }
        return found;
    }();
    return ids;
}

// What comes out well

TEST(CheckTest, theComponentPassesEveryItem) {
    const AgentOutcome outcome = check({TEV_COMPONENT_LIBRARY});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    const std::vector<Item> items = itemsIn(outcome.out);
    EXPECT_THAT(findingsIn(items), IsEmpty());
    std::set<std::string> ids;
    for (const Item& item : items) {
        EXPECT_TRUE(ids.insert(item.id).second) << item.id;
        EXPECT_EQ(item.result, "passed") << item.id;
        EXPECT_THAT(item.id, testing::MatchesRegex("[a-z]+\\.[a-z-]+"));
        EXPECT_FALSE(item.description.empty()) << item.id;
    }
    EXPECT_GE(ids.size(), 67U);
}

TEST(CheckTest, inOneProcessTheSameComesOut) {
    const AgentOutcome apart = check({TEV_COMPONENT_LIBRARY});
    const AgentOutcome inOne = check({TEV_COMPONENT_LIBRARY, "--in-process"});
    EXPECT_EQ(inOne.status, 0);
    EXPECT_EQ(inOne.out, apart.out);
}

TEST(CheckTest, theExamplePassesWithItsClassNamed) {
    const AgentOutcome outcome =
        check({TEV_EXAMPLE_COMPONENT, "--class", "Uptime", "--parent", "ManagedElement=1", "--attribute", "seconds"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(findingsIn(itemsIn(outcome.out)), IsEmpty());
}

TEST(CheckTest, theExamplePassesByItsRoute) {
    const std::string objects = std::string(TEV_EXAMPLE_NODE) + "/../component/managed-objects.xml";
    const AgentOutcome outcome = check({TEV_EXAMPLE_COMPONENT, "--objects", objects, "--attribute", "seconds"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(findingsIn(itemsIn(outcome.out)), IsEmpty());
}

TEST(CheckTest, whatNeedsInstancesIsSkippedWhereNobodyNamesTheClass) {
    const AgentOutcome outcome = check({TEV_EXAMPLE_COMPONENT});
    EXPECT_EQ(outcome.status, 0);
    for (const Item& item : itemsIn(outcome.out)) {
        const bool isSkipped = item.result == "skipped";
        EXPECT_TRUE(isSkipped || item.result == "passed") << item.id;
        EXPECT_TRUE(!isSkipped || item.remark.find("--class") != std::string::npos) << item.remark;
        EXPECT_TRUE(isSkipped || item.id.find("listing.") != 0) << item.id;
    }
}

TEST(CheckTest, aClassThatNoRouteKnowsStandsAtTheRoot) {
    const AgentOutcome outcome =
        check({library("root_class"), "--in-process", "--class", "Root", "--attribute", "version"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(findingsIn(itemsIn(outcome.out)), IsEmpty());
}

TEST(CheckTest, aParentThatIsNamedGoesBeforeThatOfTheRoute) {
    const std::vector<Item> items =
        itemsIn(check({TEV_COMPONENT_LIBRARY, "--parent", "ManagedElement=1", "--only", "listing.ends"}).out);
    EXPECT_EQ(items.front().result, "failed");
    EXPECT_EQ(items.front().remark, "newMoIterator returned -1 (failure)");
}

TEST(CheckTest, aClassThatIsNamedGoesBeforeThatOfTheRoute) {
    const std::vector<Item> items =
        itemsIn(check({TEV_COMPONENT_LIBRARY, "--class", "Other", "--parent",
                       "ManagedElement=1,SystemFunctions=1,SysM=1", "--only", "listing.ends"})
                    .out);
    EXPECT_EQ(items.front().result, "failed");
    EXPECT_EQ(items.front().remark, "newMoIterator returned -1 (failure)");
}

TEST(CheckTest, ofSeveralRoutesThatOfTheNamedClassTellsTheParent) {
    const TempFolder folder;
    const std::string objects = folder.write("objects.xml", R"(<managedObjects>
        <route class="Load" parent="Node" component="UptimeService"/>
        <route class="Uptime" parent="ManagedElement" component="UptimeService"/>
        <mo class="Node" id="1"/>
        <mo class="ManagedElement" id="1"/>
    </managedObjects>)");
    const std::vector<Item> items = itemsIn(
        check({TEV_EXAMPLE_COMPONENT, "--objects", objects, "--class", "Uptime", "--only", "listing.ends"}).out);
    EXPECT_EQ(items.front().result, "passed") << items.front().remark;
}

TEST(CheckTest, everyComponentIsGivenTheConfiguration) {
    const AgentOutcome outcome = AgentProcess::run({"--config", TEV_EXAMPLE_NODE "/libtev_schema_populator.cfg",
                                                    "--component", library("tells_configuration"), "check",
                                                    TEV_EXAMPLE_COMPONENT, "--in-process", "--only", "init.registers"});
    EXPECT_THAT(outcome.err, HasSubstr("configuration " TEV_EXAMPLE_NODE "/libtev_schema_populator.cfg, "));
}

TEST(CheckTest, whatNeedsAttributesIsSkippedWhereNobodyNamesThem) {
    const AgentOutcome outcome =
        check({TEV_EXAMPLE_COMPONENT, "--class", "Uptime", "--parent", "ManagedElement=1", "--only", "reads"});
    EXPECT_EQ(outcome.status, 0);
    const std::vector<Item> items = itemsIn(outcome.out);
    ASSERT_FALSE(items.empty());
    EXPECT_EQ(items.front().result, "skipped");
    EXPECT_THAT(items.front().remark, HasSubstr("--attribute"));
}

// How it is told

TEST(CheckTest, aTableHasALineForEachItemAndASummary) {
    const AgentOutcome outcome = AgentProcess::run({"check", library("stop_throws"), "--only", "lifecycle.start",
                                                    "--only", "lifecycle.stop", "--only", "lifecycle.restart"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out,
              "passed   lifecycle.start                  start returns 0\n"
              "failed   lifecycle.stop                   stop returns 0: component TevSchemaMoService threw in stop: "
              "will not\n"
              "skipped  lifecycle.restart                start works again after stop: because lifecycle.stop did not "
              "pass\n"
              "1 passed, 1 failed, 1 skipped\n");
    EXPECT_EQ(outcome.err, "");
}

TEST(CheckTest, aGroupNamesItsItems) {
    const std::vector<Item> items = itemsIn(check({TEV_COMPONENT_LIBRARY, "--only", "load"}).out);
    ASSERT_EQ(items.size(), 3U);
    EXPECT_EQ(items[0].id, "load.opens");
    EXPECT_EQ(items[0].remark, TEV_COMPONENT_LIBRARY);
    EXPECT_EQ(items[1].id, "load.entry-points");
    EXPECT_EQ(items[2].id, "load.quiet");
}

TEST(CheckTest, anUnknownItemIsRefusedWithTheListOfThoseThatThereAre) {
    const AgentOutcome outcome = check({TEV_COMPONENT_LIBRARY, "--only", "lifecycle.nothing"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("there is no item lifecycle.nothing"), HasSubstr("load.opens"),
                                   HasSubstr("unload.threads")));
}

TEST(CheckTest, inOneProcessEachResultIsToldBeforeTheNextItemIsTried) {
    const AgentOutcome outcome = AgentProcess::run({"check", library("exits_from_start"), "--in-process"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.out, AllOf(StartsWith("passed   load.opens "), HasSubstr("\npassed   dependencies.offered "),
                                   testing::Not(HasSubstr("lifecycle.start"))));
    EXPECT_THAT(outcome.err, HasSubstr("tev-agent: component TevSchemaMoService called exit in start\n"));
}

TEST(CheckTest, aFileThatIsNoLibraryFailsAndTheRestIsSkipped) {
    const std::string noLibrary = std::string(TEV_EXAMPLE_NODE) + "/managed-objects.xml";
    const AgentOutcome outcome = check({noLibrary});
    EXPECT_EQ(outcome.status, 1);
    const std::vector<Item> items = itemsIn(outcome.out);
    EXPECT_EQ(items.front().result, "failed");
    EXPECT_THAT(items.front().remark, StartsWith(noLibrary + ": "));
    EXPECT_EQ(items.back().result, "skipped");
    EXPECT_EQ(items.size(), allIds().size());
}

TEST(CheckTest, aFileOfObjectsThatCannotBeUsedIsToldForEachItem) {
    const AgentOutcome outcome = check({TEV_COMPONENT_LIBRARY, "--objects", "/nowhere", "--only", "load.opens"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(itemsIn(outcome.out).front().remark, HasSubstr("/nowhere"));
}

TEST(CheckTest, exceptionsAreNotSaidToBeNoneWhereNothingWasCalled) {
    const std::vector<Item> items = itemsIn(check({library("throws_unrouted"), "--only", "exceptions.none"}).out);
    EXPECT_EQ(items.front().result, "skipped");
    EXPECT_THAT(items.front().remark, StartsWith("no route leads to component Unrouted; name its class with --class"));
}

// How a process can end

TEST(CheckTest, anItemThatHangsIsEnded) {
    const AgentOutcome outcome =
        AgentProcess::run({"check", library("endless_start"), "--time-limit", "1", "--only", "lifecycle.start"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, HasSubstr("start returns 0: it did not return within 1 s\n1 failed\n"));
}

TEST(CheckTest, aComponentThatCallsExitIsNamed) {
    const std::vector<Item> items = itemsIn(check({library("exits_from_start"), "--only", "lifecycle.start"}).out);
    EXPECT_EQ(items.front().result, "crashed");
    EXPECT_EQ(items.front().remark, "component TevSchemaMoService called exit in start");
}

TEST(CheckTest, aProcessThatEndsWithoutAWordIsRecognised) {
    const std::vector<Item> items = itemsIn(check({library("leaves_at_once"), "--only", "reads.every-instance"}).out);
    EXPECT_EQ(items.front().result, "crashed");
    EXPECT_EQ(items.front().remark, "the process ended with status 0");
}

TEST(CheckTest, aCrashBearsTheNameOfItsSignal) {
    const std::vector<Item> items =
        itemsIn(check({library("crashes_on_null_class"), "--only", "listing.null-arguments"}).out);
    EXPECT_EQ(items.front().result, "crashed");
    EXPECT_EQ(items.front().remark, "SIGABRT");
}

// It is so under some that start programs.
TEST(CheckTest, howAProcessEndsIsSeenAlsoWhereTheParentIgnoresTheSignalOfIt) {
    AgentProcess::Setting setting;
    setting.ignoredSignals = {SIGCHLD};
    const AgentOutcome outcome = AgentProcess::run(
        {"--output", "json", "check", library("crashes_on_null_class"), "--only", "listing.null-arguments"}, setting);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(itemsIn(outcome.out).front().remark, "SIGABRT");
}

/// The child of a process, once it has one.
pid_t childOf(AgentProcess& agent) {
    const std::string id = std::to_string(agent.id());
    pid_t child = 0;
    while (child == 0 && !agent.hasEnded()) {
        std::ifstream("/proc/" + id + "/task/" + id + "/children") >> child;
        std::this_thread::yield();
    }
    return child;
}

TEST(CheckTest, anInterruptEndsTheCheckAndItsProcess) {
    AgentProcess agent({"check", library("endless_start"), "--time-limit", "600", "--only", "lifecycle.start"});
    const pid_t child = childOf(agent);
    ASSERT_GT(child, 0);
    agent.waitUntilAsleep();
    agent.send(SIGINT);
    const AgentOutcome outcome = agent.outcome();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.err, "tev-agent: interrupted\n");
    EXPECT_EQ(kill(child, 0), -1);
}

TEST(CheckTest, anItemThatCrashesLeavesNoCoreFile) {
    rlimit limit{};
    getrlimit(RLIMIT_CORE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ASSERT_EQ(setrlimit(RLIMIT_CORE, &limit), 0);
    AgentProcess agent({"check", library("endless_start"), "--time-limit", "600", "--only", "lifecycle.start"});
    const pid_t child = childOf(agent);
    ASSERT_GT(child, 0);
    ASSERT_EQ(prlimit(child, RLIMIT_CORE, nullptr, &limit), 0);
    agent.waitUntilAsleep();
    agent.send(SIGINT);
    EXPECT_EQ(agent.outcome().status, 130);
    EXPECT_EQ(limit.rlim_cur, 0U);
}

TEST(CheckTest, aProcessThatLeavesItsGroupIsEndedAllTheSame) {
    const AgentOutcome outcome =
        AgentProcess::run({"check", library("leaves_group"), "--time-limit", "1", "--only", "lifecycle.start"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, HasSubstr("it did not return within 1 s\n1 failed\n"));
}

TEST(CheckTest, aCheckThatIsKilledTakesItsProcessAlong) {
    AgentProcess agent({"check", library("endless_start"), "--time-limit", "600", "--only", "lifecycle.start"});
    const pid_t child = childOf(agent);
    ASSERT_GT(child, 0);
    // Till then it is a copy of its parent.
    const std::string commandLine = "/proc/" + std::to_string(child) + "/cmdline";
    while (contents(commandLine).find("--in-process") == std::string::npos && !agent.hasEnded()) {
        std::this_thread::yield();
    }
    pollfd end{static_cast<int>(syscall(SYS_pidfd_open, child, 0)), POLLIN, 0};
    agent.send(SIGKILL);
    EXPECT_EQ(agent.outcome().signal, SIGKILL);
    if (poll(&end, 1, 30000) != 1) {
        ADD_FAILURE() << "it still runs";
        kill(child, SIGKILL);
    }
    close(end.fd);
}

// It would come to this test, whose descendant it is, too.
TEST(CheckTest, noProcessOutlivesTheItemThatStartedIt) {
    ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
    EXPECT_EQ(check({library("leaves_process"), "--only", "lifecycle.start"}).status, 0);
    siginfo_t left{};
    EXPECT_EQ(waitid(P_ALL, 0, &left, WEXITED | WNOHANG | WNOWAIT), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(CheckTest, whatAnItemStartedLivesAsLongAsTheItem) {
    EXPECT_THAT(findingsIn(itemsIn(check({library("has_daemon")}).out)), IsEmpty());
}

// The parent of one of them ends while an item is under way, so that it is left as those are that items start.
TEST(CheckTest, theProcessesOfAScriptThatBecomesTheProgramAreLeftAlone) {
    const TempFolder folder;
    const std::string sleeper = folder.path() / "sleeper";
    const std::string go = folder.path() / "go";
    ChildProcess script("/bin/sh",
                        {"-c", "{ sleep 600 & echo $! > " + sleeper + "; until [ -e " + go +
                                   " ]; do sleep 0.01; done; } & exec " TEV_AGENT_PROGRAM
                                   " check --time-limit 600 --only lifecycle.start " +
                                   library("endless_start")},
                        {});
    const std::string id = std::to_string(script.id());
    const auto countChildren = [&id] {
        const std::string list = contents("/proc/" + id + "/task/" + id + "/children");
        return std::count(list.begin(), list.end(), ' ');
    };
    waitUntil([&] { return countChildren() == 2 && !contents(sleeper).empty(); });
    const auto parent = [&sleeper] {
        const std::string stat = contents("/proc/" + std::to_string(std::stoi(contents(sleeper))) + "/stat");
        return std::stoi(stat.substr(stat.rfind(')') + 4));
    };
    const pid_t before = parent();
    folder.write("go", "");
    waitUntil([&] { return parent() != before; });
    script.send(SIGINT);
    EXPECT_EQ(script.wait(), 130);
    EXPECT_EQ(kill(std::stoi(contents(sleeper)), SIGTERM), 0);
}

TEST(CheckTest, whatIsWrittenIsKeptUpToALimit) {
    const AgentOutcome outcome =
        AgentProcess::run({"check", library("floods"), "--time-limit", "1", "--only", "lifecycle.start"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out,
                HasSubstr("it did not return within 1 s; it wrote more than is kept on standard error\n1 failed\n"));
}

TEST(CheckTest, theLastWordOfAProcessTellsWhyItEnded) {
    const std::vector<Item> items = itemsIn(check({library("exits_talking"), "--only", "lifecycle.start"}).out);
    EXPECT_EQ(items.front().remark, "component TevSchemaMoService called exit in start");
}

TEST(CheckTest, aProcessHasNothingToRead) {
    Pipe pipe(0);
    ASSERT_EQ(write(pipe.writing(), "x", 1), 1);
    AgentProcess::Setting setting;
    setting.in = pipe.reading();
    const AgentOutcome outcome = AgentProcess::run({"check", library("reads_input"), "--only", "lifecycle"}, setting);
    EXPECT_EQ(outcome.status, 0) << outcome.out;
}

// The host stops, terminates and unloads the component behind every item.
TEST(CheckTest, whatComesDownAtTheEndIsTheFaultOfTheItemsThatAreAboutTheEnd) {
    const std::vector<Item> items = itemsIn(check({library("crashes_while_unloaded")}).out);
    EXPECT_EQ(items.size(), allIds().size());
    for (const Item& item : items) {
        const bool isAboutTheEnd = item.id.find("unload.") == 0 || item.id == "output.untouched";
        EXPECT_EQ(item.result, isAboutTheEnd ? "crashed" : "warning") << item.id;
        EXPECT_THAT(item.remark, testing::EndsWith(isAboutTheEnd ? "SIGABRT" : "SIGABRT, once the item was done"));
    }
}

TEST(CheckTest, anItemThatFailedBeforeItsProcessCameDownHasFailed) {
    const std::vector<Item> items =
        itemsIn(check({library("crashes_while_unloaded"), "--class", "Other", "--only", "listing.ends"}).out);
    EXPECT_EQ(items.front().result, "failed");
    EXPECT_THAT(items.front().remark,
                HasSubstr("newMoIterator returned -1 (failure); SIGABRT, once the item was done"));
}

TEST(CheckTest, anItemIsDoneAlsoWhereItsProcessHangsBehindIt) {
    const AgentOutcome outcome =
        AgentProcess::run({"check", library("endless_unload"), "--time-limit", "1", "--only", "load.entry-points"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, AllOf(StartsWith("warning  load.entry-points "),
                                   HasSubstr(": it did not return within 1 s, once the item was done\n1 warning\n")));
}

TEST(CheckTest, anItemIsDoneAlsoWhereTheComponentCallsExitBehindIt) {
    const std::vector<Item> items = itemsIn(check({library("exits_from_stop"), "--only", "lifecycle.start"}).out);
    EXPECT_EQ(items.front().result, "warning");
    EXPECT_EQ(items.front().remark, "component TevSchemaMoService called exit in stop, once the item was done");
}

// A host of its own would end the program after ten seconds.
TEST(CheckTest, howLongAStopMayTakeIsUpToTheTimeLimitAlone) {
    const AgentOutcome outcome =
        AgentProcess::run({"check", library("endless_stop"), "--time-limit", "11", "--only", "lifecycle.stop"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, HasSubstr(": it did not return within 11 s\n1 failed\n"));
}

TEST(CheckTest, anInterruptOfTwoThreadsInOneProcessIsNoFaultOfTheComponent) {
    const AgentOutcome outcome = check({library("interrupts_in_thread"), "--in-process", "--only", "threads.together"});
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "tev-agent: interrupted\n");
}

// What is named

TEST(CheckTest, theNameOfTheFileMayBeginLikeAnOption) {
    const TempFolder folder;
    std::filesystem::copy(library("one_life"), folder.path() / "-x.so");
    AgentProcess::Setting setting;
    setting.workingFolder = folder.path();
    const AgentOutcome outcome =
        AgentProcess::run({"--output", "json", "check", "--only", "load.opens", "--", "-x.so"}, setting);
    EXPECT_EQ(itemsIn(outcome.out).front().remark, folder.path() / "-x.so");
}

TEST(CheckTest, aRelativePathWithoutAWorkingFolderIsToldInASentence) {
    const TempFolder folder;
    const std::string gone = folder.path() / "gone";
    std::filesystem::create_directory(gone);
    AgentProcess shell(
        {"-c", "cd \"$0\" && rmdir \"$0\" && exec \"$1\" check x.so --only load.opens", gone, TEV_AGENT_PROGRAM}, {},
        "/bin/sh");
    EXPECT_THAT(shell.outcome().out, HasSubstr(": cannot use component library x.so: No such file or directory\n"));
}

// One fault each

struct Fault {
    const char* name;
    Findings findings;
    bool isLasting = false;  ///< what it does to its process outlives an item
};

void PrintTo(const Fault& fault, std::ostream* out) {
    *out << fault.name;
}

const std::vector<Fault>& faults() {
    static const std::vector<Fault> all = {
        {"abort_fails", {{"transactions.abort", "failed"}}},
        {"acts_on_anything", {{"actions.unknown", "failed"}}},
        {"answers_any_attribute", {{"reads.unknown-attribute", "failed"}}},
        {"answers_any_parent", {{"reads.other-parent", "warning"}}},
        {"answers_any_class", {{"reads.other-class", "failed"}}},
        {"answers_any_instance", {{"reads.unknown-instance", "failed"}}},
        {"answers_stopped", {{"lifecycle.answers-stopped", "failed"}}},
        {"asks_undeclared", {{"dependencies.declared", "warning"}}},
        {"bound_to_thread", {{"threads.shared", "failed"}, {"threads.handed-on", "failed"}}},
        {"changes_process", {{"unload.process", "warning"}}, true},
        {"comma_in_key", {{"listing.keys", "warning"}}},
        {"compares_prefixes", {{"reads.similar-instance", "failed"}}},
        {"crashes_on_null_attribute", {{"reads.null-arguments", "crashed"}}, true},
        {"crashes_on_null_class", {{"listing.null-arguments", "crashed"}}, true},
        {"crashes_unjoined", {{"transactions.no-join", "crashed"}}, true},
        {"creates_anything", {{"writes.create", "failed"}}},
        {"deletes_anything", {{"writes.delete", "failed"}}},
        {"empty_after_restart", {{"lifecycle.used-again", "warning"}}},
        {"empty_extra", {{"tables.extra", "failed"}}},
        {"fails_at_end", {{"listing.end-again", "warning"}}},
        {"finish_changes_values", {{"transactions.apart", "failed"}}},
        {"finish_needs_start", {{"transactions.finish-after-stop", "failed"}}},
        {"finish_rewinds", {{"transactions.apart", "failed"}}},
        {"finishes_all", {{"transactions.apart", "failed"}}},
        {"frees_on_commit", {{"memory.until-finish", "failed"}}},
        {"init_once", {{"init.again", "warning"}}},
        {"init_returns_code", {{"init.registers", "failed"}}},
        {"init_without_portal", {{"init.no-portal", "failed"}}},
        {"joins_anything", {{"transactions.unknown", "failed"}}},
        {"joins_once", {{"transactions.join-again", "warning"}}},
        {"joins_silently", {{"transactions.join", "failed"}}},
        {"joins_unstarted", {{"lifecycle.not-started", "failed"}, {"lifecycle.stopped", "failed"}}},
        {"keeps_aborted", {{"memory.released", "failed"}}},
        {"keeps_iterators", {{"listing.finished-iterator", "failed"}}},
        {"keeps_memory", {{"memory.released", "failed"}}},
        {"keeps_refused", {{"memory.released", "failed"}}},
        {"key_ring", {{"memory.keys", "failed"}}},
        {"leaves_descriptor", {{"unload.descriptors", "warning"}}},
        {"leaves_process", {{"unload.children", "warning"}}, true},
        {"leaves_thread", {{"unload.threads", "warning"}}, true},
        {"leaves_result", {{"reads.unknown-attribute", "warning"}}},
        {"listing_begins_again", {{"listing.end-again", "warning"}}},
        {"listing_throws_int", {{"listing.ends", "failed"}}},
        {"lists_any_class", {{"listing.unknown-class", "failed"}}},
        {"lists_any_parent", {{"listing.unknown-parent", "failed"}}},
        {"lists_for_ever", {{"listing.ends", "failed"}}},
        {"lists_into_nothing", {{"listing.null-arguments", "failed"}}},
        {"load_throws_int", {{"load.opens", "failed"}}},
        {"mixes_threads", {{"threads.together", "warning"}}},
        {"nameless_dependency", {{"tables.dependencies", "failed"}}},
        {"nameless_extra", {{"tables.extra", "failed"}}},
        {"no_init", {{"load.entry-points", "failed"}}},
        {"no_portal_dependency", {{"dependencies.portal", "warning"}}},
        {"no_terminate", {{"load.entry-points", "failed"}}},
        {"no_type", {{"reads.well-formed", "failed"}}},
        {"null_array", {{"tables.component", "failed"}}},
        {"null_component", {{"init.registers", "failed"}}},
        {"null_function", {{"tables.offers", "failed"}}},
        {"null_value", {{"reads.well-formed", "failed"}}},
        {"odd_bool", {{"reads.well-formed", "warning"}}},
        {"one_iterator", {{"listing.two-iterators", "failed"}}},
        {"one_key_buffer", {{"memory.keys", "failed"}, {"transactions.apart", "failed"}}},
        {"one_life",
         {{"unload.again", "failed"},
          {"unload.descriptors", "failed"},
          {"unload.process", "warning"},
          {"unload.threads", "failed"}},
         true},
        {"one_read_at_a_time", {{"threads.shared", "failed"}}},
        {"one_thread_only",
         {{"threads.together", "failed"}, {"threads.shared", "failed"}, {"threads.handed-on", "failed"}}},
        {"one_value_buffer", {{"memory.values", "failed"}}},
        {"prints_while_loaded", {{"load.quiet", "warning"}}},
        {"prints_while_read", {{"output.untouched", "warning"}}},
        {"read_fails", {{"reads.every-instance", "failed"}}},
        {"reads_into_nothing", {{"reads.null-arguments", "failed"}}},
        {"reads_of_nothing", {{"reads.null-arguments", "failed"}}},
        {"reference_nowhere", {{"reads.well-formed", "warning"}}},
        {"refuses_with_exception", {{"exceptions.none", "warning"}}},
        {"refuses_unstarted", {{"lifecycle.not-started", "warning"}, {"lifecycle.stopped", "warning"}}},
        {"registers_nothing", {{"init.registers", "failed"}}},
        {"repeats_key", {{"listing.keys", "warning"}}},
        {"sets_anything", {{"writes.set", "failed"}}},
        {"start_fails", {{"lifecycle.start", "failed"}}},
        {"starts_thread_while_loaded", {{"load.quiet", "warning"}}, true},
        {"starts_twice", {{"lifecycle.restart", "failed"}}},
        {"stays_loaded", {{"unload.unmaps", "warning"}}, true},
        {"stays_registered", {{"init.unregisters", "failed"}}},
        {"stop_needs_service", {{"lifecycle.failed-start", "failed"}}},
        {"stop_throws", {{"lifecycle.stop", "failed"}}},
        {"stops_once", {{"lifecycle.stop-again", "warning"}}},
        {"strange_code", {{"reads.unknown-attribute", "warning"}}},
        {"strange_type", {{"reads.well-formed", "failed"}}},
        {"strange_values", {{"reads.well-formed", "warning"}}},
        {"struct_without_cells", {{"reads.well-formed", "failed"}}},
        {"trusts_iterators", {{"listing.unknown-iterator", "crashed"}}, true},
        {"trusts_null", {{"listing.unknown-iterator", "failed"}}},
        {"unresolved", {{"load.opens", "failed"}}},
        {"unmet_dependency", {{"dependencies.offered", "failed"}}},
        {"votes_no", {{"transactions.commit", "failed"}}},
        {"wrong_component_version", {{"tables.component", "failed"}}},
        {"wrong_table_version", {{"tables.offers", "failed"}}},
    };
    return all;
}

class CheckOfFaultTest : public testing::TestWithParam<Fault> {};

// In one process where that can be, which is much faster.
TEST_P(CheckOfFaultTest, isFoundByItsItem) {
    std::vector<std::string> arguments = {library(GetParam().name)};
    if (!GetParam().isLasting) {
        arguments.emplace_back("--in-process");
    }
    const AgentOutcome outcome = check(arguments);
    const std::vector<Item> items = itemsIn(outcome.out);
    EXPECT_EQ(findingsIn(items), GetParam().findings);
    EXPECT_EQ(items.size(), allIds().size());
    const bool isBad = std::any_of(GetParam().findings.begin(), GetParam().findings.end(),
                                   [](const auto& finding) { return finding.second != "warning"; });
    EXPECT_EQ(outcome.status, isBad ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Fault, CheckOfFaultTest, testing::ValuesIn(faults()),
                         [](const auto& fault) { return std::string(fault.param.name); });

class CheckOfRightComponentTest : public testing::TestWithParam<const char*> {};

// What a check might take for a fault and is none.
TEST_P(CheckOfRightComponentTest, passes) {
    const AgentOutcome outcome = check({library(GetParam()), "--in-process"});
    EXPECT_THAT(findingsIn(itemsIn(outcome.out)), IsEmpty());
    EXPECT_EQ(outcome.status, 0);
}

INSTANTIATE_TEST_SUITE_P(Component, CheckOfRightComponentTest,
                         testing::Values("instances_come_and_go", "keeps_cache", "knows_its_transactions",
                                         "many_instances", "own_participants", "refuses_at_validation", "slow_reads",
                                         "two_components"),
                         [](const auto& component) { return std::string(component.param); });

TEST(CheckTest, thereIsAFaultForEveryItem) {
    std::set<std::string> found;
    for (const Fault& fault : faults()) {
        for (const auto& [id, result] : fault.findings) {
            found.insert(id);
        }
    }
    const std::set<std::string> ids(allIds().begin(), allIds().end());
    EXPECT_EQ(found, ids);
}

}  // namespace

}  // namespace TevTest
