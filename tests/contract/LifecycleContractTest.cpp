#include <array>
#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ContractTest.h"
#include "Portal.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr std::array<TevReturnT, 4> refusals = {-1, -2, -8, 7};

/// A model whose reading leaves debug traces only.
FakeModel quietModel(const std::string& name) {
    return {name, "1", "2", "3", {}, {}, {}};
}

FakeModel modelWithOptions(const std::string& name, std::vector<std::string> options) {
    return {name, {}, {}, {}, {}, std::move(options), {}};
}

/// The failures that a start passes over, by call and code.
constexpr TevReturnT anyCode = 0;
const std::set<std::pair<std::string, TevReturnT>> toleratedFailures = {
    {"getFirstMom", -2},
    {"getNextMom A", -2},
    {"getNextMom B", -2},
    {"getNextMom C", -2},
    {"getGeneralDomainValue A,ORVA,orvaMomName", -2},
    {"getGeneralDomainValue B,ORVA,orvaMomName", -2},
    {"getGeneralDomainValue C,ORVA,orvaMomName", -2},
    {"getGeneralDomainValue A,ORVA,orvaMomVersion", -2},
    {"getGeneralDomainValue B,ORVA,orvaMomVersion", -2},
    {"getGeneralDomainValue C,ORVA,orvaMomVersion", -2},
    {"getGeneralDomainValue A,ORVA,orvaMomRelease", -2},
    {"getGeneralDomainValue A,ORVA,orvaMomCorrection", anyCode},
    {"getMomStringProperty A,8", anyCode},
    {"getMomStringProperty B,8", anyCode},
    {"getMomStringProperty C,8", anyCode}};

/// An interface's descriptor as one text.
std::string shown(const DalMgmtSpiInterface_1& descriptor) {
    return std::string(descriptor.componentName) + "/" + descriptor.interfaceName + "/" + descriptor.interfaceVersion;
}

/// The entries of an array before its terminating null.
std::vector<std::string> shown(DalMgmtSpiInterface_1* const* array) {
    std::vector<std::string> texts;
    for (; *array != nullptr; ++array) {
        texts.push_back(shown(**array));
    }
    return texts;
}

}  // namespace

/// The registered component, not started; what the registration logged and called is forgotten.
class LifecycleContractTest : public ContractTest {
protected:
    LifecycleContractTest() { forget(); }

    /// Takes the component off the portal, so that the next `init` registers it anew.
    void terminate() {
        component->terminate();
        forget();
    }

    /// The code of a read: 2 unless the component is started.
    TevReturnT readCode(const std::string& schemaId) {
        DalMoAttributeValueContainer* container = nullptr;
        const TevReturnT code = objects().getMoAttribute(readHandle, dnOf(schemaId).c_str(), "schemaId", &container);
        resource().finish(readHandle);
        return code;
    }

    /// Lets the `nth` fetch of a start fail with each code in turn and expects `text` and nothing else in the log, no
    /// call after that fetch, and a component that is not started but can be.
    void expectStartToFailAtFetch(unsigned int nth, const std::string& text) {
        for (const TevReturnT code : refusals) {
            SCOPED_TRACE(code);
            host.failCall("getInterface", code, nth);
            forget();
            EXPECT_EQ(start(), code);
            EXPECT_THAT(log.records(),
                        ElementsAreArray(inOrder({startEntry(), message(3, serviceFile, "start", text)})));
            EXPECT_EQ(host.calls(), Values(fetchCalls.begin(), fetchCalls.begin() + static_cast<std::ptrdiff_t>(nth)));
            EXPECT_EQ(readCode("A"), 2);
        }
        host.models = {{"A"}};
        EXPECT_EQ(start(), 0);
        EXPECT_EQ(readCode("A"), 0);
    }

    static Records terminateRecords() {
        return inOrder(
            {debugTrace(9, serviceFile, "terminate", " >> "), debugTrace(10, serviceFile, "terminate", " << ")});
    }
    static Records stopRecords() {
        return inOrder({debugTrace(9, serviceFile, "stop", " >> ***** Stopping service *****"),
                        debugTrace(10, serviceFile, "stop", " << ")});
    }
    static Records initRecordsWithoutConfiguration() {
        return inOrder(
            {debugTrace(9, serviceFile, "initialize", " >> "),
             message(4, serviceFile, "initialize", "Got zero pointer for configuration file using default values"),
             debugTrace(10, serviceFile, "initialize", " << ")});
    }

    static constexpr unsigned long readHandle = 4711;
};

// Registration.

TEST_F(LifecycleContractTest, initAsksForPortalThreeThenOneThenRegisters) {
    terminate();
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(host.calls(), ElementsAre("getPortal 3", "getPortal 1", "registerComponent TevSchemaMoService"));
    EXPECT_NE(host.component(), nullptr);
}

TEST_F(LifecycleContractTest, initWithoutPortalFailsAndInitialisesNothing) {
    terminate();
    host.withoutPortal();
    EXPECT_EQ(init(), -1);
    EXPECT_THAT(host.calls(), ElementsAre("getPortal 3", "getPortal 1"));
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_EQ(host.component(), nullptr);
}

TEST_F(LifecycleContractTest, terminateAfterAnInitWithoutPortalCallsNobody) {
    terminate();
    host.withoutPortal();
    EXPECT_EQ(init(), -1);
    forget();
    component->terminate();
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_THAT(log.records(), ElementsAreArray(terminateRecords()));
}

TEST_F(LifecycleContractTest, initReturnsTheCodeOfARefusedRegistrationAndInitialisesNothing) {
    terminate();
    for (const TevReturnT code : refusals) {
        SCOPED_TRACE(code);
        host.failCall("registerComponent", code);
        forget();
        EXPECT_EQ(init(), code);
        EXPECT_THAT(host.calls(), ElementsAre("getPortal 3", "getPortal 1", "registerComponent TevSchemaMoService"));
        EXPECT_THAT(log.records(), IsEmpty());
    }
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(initRecordsWithoutConfiguration()));
}

TEST_F(LifecycleContractTest, terminateAfterARefusedRegistrationUnregisters) {
    terminate();
    host.failCall("registerComponent", -1);
    EXPECT_EQ(init(), -1);
    forget();
    component->terminate();
    EXPECT_THAT(host.calls(), ElementsAre("unregisterComponent TevSchemaMoService"));
}

TEST_F(LifecycleContractTest, initRegistersBeforeItInitialises) {
    terminate();
    bool registered = false;
    host.whenCalled("registerComponent", [&] {
        registered = true;
        EXPECT_THAT(log.records(), IsEmpty());
    });
    EXPECT_EQ(init(), 0);
    EXPECT_TRUE(registered);
    EXPECT_THAT(log.records(), ElementsAreArray(initRecordsWithoutConfiguration()));
}

// What is registered.

TEST_F(LifecycleContractTest, componentTableDescribesTheComponent) {
    const DalMgmtSpiComponent_2& table = *host.component();
    EXPECT_EQ(shown(table.base), "TevSchemaMoService/DalMgmtSpiComponent/2");
    EXPECT_NE(table.start, nullptr);
    EXPECT_NE(table.stop, nullptr);
    EXPECT_FALSE(table.flag);
}

TEST_F(LifecycleContractTest, interfaceArrayHoldsTransactionalResourceThenManagedObject) {
    EXPECT_THAT(shown(host.component()->interfaceArray),
                ElementsAre("TevSchemaMoService/DalOamSpiTransactionalResource/2",
                            "TevSchemaMoService/DalOamSpiManagedObject/1"));
}

TEST_F(LifecycleContractTest, dependencyArrayHoldsPortalRepositoryRouterThreadContext) {
    EXPECT_THAT(
        shown(host.component()->dependencyArray),
        ElementsAre("DalPortalService/DalPortal/3", "DalOamSpiModelRepositoryService/DalOamSpiModelRepository/1",
                    "DalOamSpiCmRouterService/DalOamSpiManagedObject/1",
                    "DalMgmtSpiThreadContextService/DalMgmtSpiThreadContext/2"));
}

TEST_F(LifecycleContractTest, firstDependencyIsTheCommonLibrarysOwnPortalDescriptor) {
    EXPECT_EQ(host.component()->dependencyArray[0], &Tev::Portal::COMP_ID);
}

TEST_F(LifecycleContractTest, extraArrayHoldsOnlyTheTerminatingNull) {
    ASSERT_NE(host.component()->extraArray, nullptr);
    EXPECT_EQ(host.component()->extraArray[0], nullptr);
}

TEST_F(LifecycleContractTest, everySlotOfTheOfferedTablesIsFilled) {
    EXPECT_NE(resource().join, nullptr);
    EXPECT_NE(resource().prepare, nullptr);
    EXPECT_NE(resource().commit, nullptr);
    EXPECT_NE(resource().abort, nullptr);
    EXPECT_NE(resource().finish, nullptr);
    EXPECT_NE(resource().validate, nullptr);
    EXPECT_NE(objects().setMoAttribute, nullptr);
    EXPECT_NE(objects().getMoAttribute, nullptr);
    EXPECT_NE(objects().newMoIterator, nullptr);
    EXPECT_NE(objects().nextMo, nullptr);
    EXPECT_NE(objects().createMo, nullptr);
    EXPECT_NE(objects().deleteMo, nullptr);
    EXPECT_NE(objects().action, nullptr);
}

TEST_F(LifecycleContractTest, registeringAgainDoublesNoList) {
    const auto expectListsOnce = [&] {
        EXPECT_EQ(shown(host.component()->interfaceArray).size(), 2U);
        EXPECT_EQ(shown(host.component()->dependencyArray).size(), 4U);
        EXPECT_EQ(shown(host.component()->extraArray).size(), 0U);
    };
    EXPECT_EQ(init(), 0);
    expectListsOnce();
    terminate();
    EXPECT_EQ(init(), 0);
    expectListsOnce();
}

// Termination.

TEST_F(LifecycleContractTest, terminateUnregistersTheComponent) {
    component->terminate();
    EXPECT_THAT(host.calls(), ElementsAre("unregisterComponent TevSchemaMoService"));
    EXPECT_EQ(host.component(), nullptr);
}

TEST_F(LifecycleContractTest, terminateTracesEntryAndExitBeforeItUnregisters) {
    bool unregistered = false;
    host.whenCalled("unregisterComponent", [&] {
        unregistered = true;
        EXPECT_THAT(log.records(), ElementsAreArray(terminateRecords()));
    });
    component->terminate();
    EXPECT_TRUE(unregistered);
    EXPECT_THAT(log.records(), ElementsAreArray(terminateRecords()));
}

TEST_F(LifecycleContractTest, terminateAgainUnregistersNothing) {
    terminate();
    component->terminate();
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_THAT(log.records(), ElementsAreArray(terminateRecords()));
}

TEST_F(LifecycleContractTest, terminateTakesNoNoticeOfAnUnregistrationThatFails) {
    host.failCall("unregisterComponent", -2);
    component->terminate();
    EXPECT_THAT(log.records(), ElementsAreArray(terminateRecords()));
    forget();
    component->terminate();
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(LifecycleContractTest, terminateLeavesTheComponentStarted) {
    startWith({modelWithOptions("A", {"f", "g"})});
    DalOamSpiManagedObject_1& table = objects();
    const unsigned long txHandle = begin();
    component->terminate();
    DalMoAttributeValueContainer* container = nullptr;
    EXPECT_EQ(table.getMoAttribute(txHandle, dnOf("A").c_str(), "schemaId", &container), 0);
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(read(txHandle, "A", "selectedModelOptions"), Values({"f", "g"}));
}

TEST_F(LifecycleContractTest, componentWorksAgainAfterTerminateAndInit) {
    startWith({{"A"}});
    stop();
    terminate();
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(readCode("A"), 2);
    startWith({{"B"}});
    EXPECT_THAT(list(begin()), ElementsAre("B"));
}

// Start.

TEST_F(LifecycleContractTest, startFetchesFourInterfacesThenReadsTheRepository) {
    EXPECT_EQ(start(), 0);
    Values expected = fetchCalls;
    expected.emplace_back("getFirstMom");
    EXPECT_EQ(host.calls(), expected);
}

TEST_F(LifecycleContractTest, startTracesEntryAndExit) {
    EXPECT_EQ(start(), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(inOrder({startEntry(), startExit()})));
}

TEST_F(LifecycleContractTest, startTakesAnyReason) {
    host.models = {{"A"}};
    for (const auto reason : {static_cast<DalStateChangeReason>(1), DalStateChangeReasonWidth}) {
        EXPECT_EQ(host.component()->start(reason), 0);
        EXPECT_EQ(readCode("A"), 0);
        EXPECT_EQ(host.component()->stop(reason), 0);
        EXPECT_EQ(readCode("A"), 2);
    }
}

TEST_F(LifecycleContractTest, componentIsNotStartedWhileTheCatalogueIsBuilt) {
    host.models = {{"A"}, {"B"}};
    std::vector<TevReturnT> codes;
    host.whenCalled("getNextMom", [&] { codes.push_back(readCode("A")); });
    EXPECT_EQ(start(), 0);
    EXPECT_THAT(codes, ElementsAre(2, 2));
    EXPECT_EQ(readCode("A"), 0);
}

TEST_F(LifecycleContractTest, startFailsWithoutTransactionService) {
    expectStartToFailAtFetch(1, "Could not get transaction service");
}

TEST_F(LifecycleContractTest, startFailsWithoutThreadContext) {
    expectStartToFailAtFetch(2, "Could not get threadContext service");
}

TEST_F(LifecycleContractTest, startFailsWithoutModelRepository) {
    expectStartToFailAtFetch(3, "Could not get model repository interface");
}

TEST_F(LifecycleContractTest, startFailsWithoutRepositoryExtension) {
    expectStartToFailAtFetch(4, "Could not get model repository extension interface");
}

TEST_F(LifecycleContractTest, startFailsForAnInterfaceThatNobodyOffers) {
    host.withdraw("DalOamSpiModelRepositoryExtension");
    EXPECT_EQ(start(), -2);
    EXPECT_THAT(log.records(),
                ElementsAreArray(inOrder({startEntry(), message(3, serviceFile, "start",
                                                                "Could not get model repository extension "
                                                                "interface")})));
    EXPECT_EQ(readCode("A"), 2);
}

TEST_F(LifecycleContractTest, everyFailureButTheToleratedFailsAStartAndNotTheNext) {
    host.models = {modelWithOptions("A", {"f", "g"}), quietModel("B"), modelWithOptions("C", {})};
    host.models.front().orva = {
        {"orvaMomName", "Base"}, {"orvaMomVersion", "3"}, {"orvaMomRelease", "4"}, {"orvaMomCorrection", "6"}};
    EXPECT_EQ(start(), 0);
    const Values callsOfAStart = host.calls();
    ASSERT_GT(callsOfAStart.size(), 20U);
    for (const TevReturnT code : refusals) {
        for (unsigned int nth = 1; nth <= callsOfAStart.size(); ++nth) {
            const std::string& call = callsOfAStart[nth - 1];
            SCOPED_TRACE(testing::Message() << call << " gives " << code);
            stop();
            host.failAnyCall(nth, code);
            const bool tolerated = toleratedFailures.count({call, anyCode}) + toleratedFailures.count({call, code}) > 0;
            EXPECT_EQ(start(), tolerated ? 0 : code);
            const bool started = readCode("A") != 2;
            EXPECT_EQ(started, tolerated);
            stop();
            ASSERT_EQ(start(), 0);
            ASSERT_THAT(list(readHandle), ElementsAre("A", "B", "C"));
            ASSERT_EQ(read(readHandle, "A", "selectedModelOptions"), Values({"f", "g"}));
            resource().finish(readHandle);
        }
    }
}

TEST_F(LifecycleContractTest, failedRestartLeavesTheComponentStarted) {
    startWith({{"A"}});
    const unsigned long txHandle = begin();
    for (unsigned int nth = 1; nth <= 4; ++nth) {
        SCOPED_TRACE(nth);
        host.failCall("getInterface", 7, nth);
        EXPECT_EQ(start(), 7);
        EXPECT_EQ(read(txHandle, "A", "schemaId"), Values{"A"});
        EXPECT_THAT(list(txHandle), ElementsAre("A"));
    }
}

TEST_F(LifecycleContractTest, startLetsAnExceptionOfThePortalThrough) {
    host.models = {{"A"}};
    host.whenCalled("getInterface", [] { throw 42; });
    EXPECT_THROW(start(), int);
    EXPECT_EQ(readCode("A"), 2);
}

// Stop.

TEST_F(LifecycleContractTest, stopTracesEntryAndExitAndCallsNobody) {
    startWith({modelWithOptions("A", {"f"})});
    EXPECT_EQ(stop(), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(stopRecords()));
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(LifecycleContractTest, stopEndsTheReads) {
    startWith({{"A"}});
    EXPECT_EQ(readCode("A"), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(readCode("A"), 2);
}

TEST_F(LifecycleContractTest, stopTwiceIsHarmless) {
    startWith({modelWithOptions("A", {"f", "g"}), {"B"}, modelWithOptions("C", {})});
    EXPECT_EQ(stop(), 0);
    log.clear();
    EXPECT_EQ(stop(), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(stopRecords()));
    EXPECT_EQ(start(), 0);
    EXPECT_THAT(list(begin()), ElementsAre("A", "B", "C"));
}

TEST_F(LifecycleContractTest, stopAfterAFailedStartDoesTheSame) {
    host.models = {modelWithOptions("A", {"f"}), modelWithOptions("B", {"g"})};
    host.failCall("getMomFileName", -1, 2);
    EXPECT_EQ(start(), -1);
    log.clear();
    EXPECT_EQ(stop(), 0);
    EXPECT_THAT(log.records(), ElementsAreArray(stopRecords()));
}

TEST_F(LifecycleContractTest, startAndStopMayAlternateAThousandTimes) {
    const LogCapture quiet(3);
    host.models = {modelWithOptions("A", {"f", "g"}), {"B"}, modelWithOptions("C", {}), {"D"}};
    for (int round = 0; round < 1000; ++round) {
        ASSERT_EQ(start(), 0);
        ASSERT_THAT(list(readHandle), ElementsAre("A", "B", "C", "D"));
        ASSERT_EQ(resource().finish(readHandle), 0);
        ASSERT_EQ(stop(), 0);
        ASSERT_EQ(readCode("A"), 2);
    }
    EXPECT_EQ(quiet.records().size(), 2000U);
    EXPECT_EQ(quiet.recordsOf("_tevSchemaPopulator_getMoAttribute_if").size(), 2000U);
}

// Levels.

TEST_F(LifecycleContractTest, nothingIsTracedAtLevelSeven) {
    terminate();
    host.models = {quietModel("A")};
    const LogCapture capture(7);
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(capture.records(),
                ElementsAreArray(message(4, serviceFile, "initialize",
                                         "Got zero pointer for configuration file using default values")));
    forget();
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(stop(), 0);
    component->terminate();
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(LifecycleContractTest, wholeLifeLeavesNoRecordAtLevelTwo) {
    terminate();
    const LogCapture capture(2);
    EXPECT_EQ(init(), 0);
    host.models = {modelWithOptions("A", {"f"}), modelWithOptions("B", {})};
    host.failCall("getMomFileName", -1);
    EXPECT_EQ(start(), -1);
    EXPECT_EQ(readCode("A"), 2);
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(readCode("A"), 0);
    EXPECT_EQ(readCode("C"), -2);
    host.failCall("registerParticipant", -1);
    EXPECT_EQ(resource().join(readHandle), -1);
    EXPECT_EQ(objects().createMo(readHandle, parentDn, "Schema", "schemaId", nullptr), -1);
    EXPECT_EQ(objects().deleteMo(readHandle, dnOf("A").c_str()), -1);
    EXPECT_EQ(objects().nextMo(nullptr, nullptr), -8);
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(resource().finish(readHandle), 0);
    component->terminate();
    EXPECT_THAT(capture.records(), IsEmpty());
}

TEST_F(LifecycleContractTest, everyFailureOfStartIsLoggedFromLevelThree) {
    const std::array<const char*, 5> texts = {
        "Could not get transaction service", "Could not get threadContext service",
        "Could not get model repository interface", "Could not get model repository extension interface",
        "Could not initialize SchemaData vector"};
    for (unsigned int step = 1; step <= 5; ++step) {
        SCOPED_TRACE(step);
        host.failAnyCall(step, -1);
        const LogCapture capture(3);
        EXPECT_EQ(start(), -1);
        EXPECT_THAT(capture.records(), ElementsAreArray(message(3, serviceFile, "start", texts[step - 1])));
        host.failAnyCall(step, -1);
        const LogCapture below(2);
        EXPECT_EQ(start(), -1);
        EXPECT_THAT(below.records(), IsEmpty());
    }
}

}  // namespace TevTest
