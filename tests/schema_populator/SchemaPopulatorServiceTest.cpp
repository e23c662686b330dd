#include "SchemaPopulatorService.h"

#include <gmock/gmock.h>

#include <new>
#include <string>
#include <utility>
#include <vector>

#include "ExportParameters.h"
#include "FakeHost.h"
#include "LogCapture.h"
#include "MemoryWatch.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;
using TevSchemaPopulator::SchemaData;
using TevSchemaPopulator::SchemaPopulatorService;

constexpr const char* sourceFile = "src/schema_populator/SchemaPopulatorService";

/// A service of the test's own, registered with a host of fakes. Its tables lead to the process's one service and are
/// not used.
class SchemaPopulatorServiceTest : public testing::Test {
protected:
    SchemaPopulatorServiceTest() { EXPECT_EQ(service.registerComponent(host.accessor(), nullptr), 0); }

    ~SchemaPopulatorServiceTest() override {
        service.stop(DalStateChangeReasonUnspecified);
        service.unregisterComponent();
    }

    TevReturnT start(std::vector<FakeModel> models = {}) {
        host.models = std::move(models);
        return service.start(DalStateChangeReasonUnspecified);
    }

    TevReturnT stop() { return service.stop(DalStateChangeReasonUnspecified); }

    int find(const std::string& schemaId) { return service.getSchemaMoImpl()->findSchemaData(schemaId); }

    static FakeModel withFeatures(const std::string& name, std::vector<std::string> features) {
        FakeModel model{name};
        model.features = std::move(features);
        return model;
    }

    FakeHost host;
    SchemaPopulatorService service;
};

/// The blocks in the order of their release, of blocks in the order of their making: each list is made as array, texts.
std::vector<void*> arrayLast(const std::vector<void*>& list) {
    std::vector<void*> blocks(list.begin() + 1, list.end());
    blocks.push_back(list.front());
    return blocks;
}

std::vector<testing::Matcher<LogRecord>> noTransactionService() {
    return message(3, sourceFile, "join", "transaction Service is not avaliable");
}

// Initializing.

TEST_F(SchemaPopulatorServiceTest, initializeLetsOtherExceptionsThrough) {
    const std::string path = "/none/" + std::string(100, 'x');  // no small string holds it
    const auto initializeWithoutMemory = [&](MemoryWatch::Thrown thrown) {
        MemoryWatch watch;
        watch.failNew(1, thrown);
        service.initialize(path.c_str());
    };
    LogCapture log;
    EXPECT_THROW(initializeWithoutMemory(MemoryWatch::Thrown::Int), int);
    EXPECT_THAT(log.records(), ElementsAreArray(debugTrace(9, sourceFile, "initialize", " >> ")));
    log.clear();
    EXPECT_THROW(initializeWithoutMemory(MemoryWatch::Thrown::BadAlloc), std::bad_alloc);
    EXPECT_THAT(log.records(), ElementsAreArray(debugTrace(9, sourceFile, "initialize", " >> ")));
}

// Taking part in transactions.

TEST_F(SchemaPopulatorServiceTest, joinBeforeAnyStartFails) {
    const LogCapture log;
    EXPECT_EQ(service.join(5), -1);
    EXPECT_THAT(log.records(), ElementsAreArray(noTransactionService()));
}

TEST_F(SchemaPopulatorServiceTest, joinFailsAfterAStartWithoutTheTransactionService) {
    host.withdraw("DalOamSpiTransaction");
    EXPECT_EQ(start(), -2);
    const LogCapture log;
    EXPECT_EQ(service.join(5), -1);
    EXPECT_THAT(log.records(), ElementsAreArray(noTransactionService()));
}

TEST_F(SchemaPopulatorServiceTest, joinWorksAfterAStartThatFailedAtTheThreadContext) {
    host.withdraw("DalMgmtSpiThreadContext");
    EXPECT_EQ(start(), -2);
    EXPECT_FALSE(service.isStarted());
    const LogCapture log;
    EXPECT_EQ(service.join(5), 0);
    EXPECT_THAT(log.records(), IsEmpty());
    const auto participants = host.participants(5);
    ASSERT_THAT(participants, SizeIs(1));
    EXPECT_STREQ(participants[0]->base.interfaceName, "DalOamSpiTransactionalResource");
}

TEST_F(SchemaPopulatorServiceTest, joinWorksAfterStop) {
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(service.join(5), 0);
    EXPECT_THAT(host.participants(5), SizeIs(1));
}

TEST_F(SchemaPopulatorServiceTest, joinHandsOnTheTransactionServicesCode) {
    EXPECT_EQ(start(), 0);
    for (const TevReturnT code : {-1, -2, 7}) {
        SCOPED_TRACE(code);
        host.failCall("registerParticipant", code);
        const LogCapture log;
        EXPECT_EQ(service.join(5), code);
        EXPECT_THAT(log.records(), ElementsAreArray(message(3, sourceFile, "join", "Failed to registerParticipant")));
    }
}

// Started or not.

TEST_F(SchemaPopulatorServiceTest, isStartedBetweenASuccessfulStartAndTheNextStop) {
    EXPECT_FALSE(service.isStarted());
    host.failCall("getFirstMom", -1);
    EXPECT_EQ(start(), -1);
    EXPECT_FALSE(service.isStarted());
    EXPECT_EQ(start(), 0);
    EXPECT_TRUE(service.isStarted());
    host.failCall("getFirstMom", -1);
    EXPECT_EQ(start(), -1);
    EXPECT_TRUE(service.isStarted());
    EXPECT_EQ(stop(), 0);
    EXPECT_FALSE(service.isStarted());
}

TEST_F(SchemaPopulatorServiceTest, stopBeforeAnyStartSucceeds) {
    host.clearCalls();
    const LogCapture log;
    EXPECT_EQ(stop(), 0);
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_THAT(log.records(),
                ElementsAreArray(inOrder({debugTrace(9, sourceFile, "stop", " >> ***** Stopping service *****"),
                                          debugTrace(10, sourceFile, "stop", " << ")})));
    EXPECT_FALSE(service.isStarted());
}

TEST_F(SchemaPopulatorServiceTest, threadContextIsForgottenAtStop) {
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(stop(), 0);
    ExportParameters parameters("sftp://10.0.0.1/f", "secret");
    parameters.password.container.nrOfValues = 0;
    DalMoAttributeValueContainer* result = nullptr;
    const LogCapture log(3);
    EXPECT_EQ(service.getSchemaMoImpl()->action(5, "ManagedElement=1,SystemFunctions=1,SysM=1,Schema=One", "export",
                                                parameters.array, &result),
              -8);
    EXPECT_THAT(log.recordsOf("addThreadContextMessage"),
                ElementsAreArray(message(3, "src/schema_populator/SchemaMoImpl", "addThreadContextMessage",
                                         "ThreadContext is null but SchemaMoService is started.")));
    EXPECT_THAT(host.messages(), IsEmpty());
}

// The catalogue.

TEST_F(SchemaPopulatorServiceTest, catalogueIsEmptyBeforeAnyStart) {
    EXPECT_EQ(find("Dummy should not be used"), -1);
    EXPECT_EQ(find(""), -1);
}

TEST_F(SchemaPopulatorServiceTest, providerServesTheServicesCatalogue) {
    EXPECT_EQ(start({FakeModel{"One"}, FakeModel{"Two"}}), 0);
    EXPECT_EQ(find("One"), 0);
    EXPECT_EQ(find("Two"), 1);
    EXPECT_EQ(start({FakeModel{"Two"}}), 0);
    EXPECT_EQ(find("One"), -1);
    EXPECT_EQ(find("Two"), 0);
}

TEST_F(SchemaPopulatorServiceTest, failingFirstStartKeepsTheRecordsBeforeTheFailure) {
    host.failCall("getMomFileName", -2, 3);
    EXPECT_EQ(start({FakeModel{"One"}, FakeModel{"Two"}, FakeModel{"Three"}, FakeModel{"Four"}}), -2);
    EXPECT_EQ(find("One"), 0);
    EXPECT_EQ(find("Two"), 1);
    EXPECT_EQ(find("Three"), -1);
    EXPECT_EQ(find("Four"), -1);
}

TEST_F(SchemaPopulatorServiceTest, stopKeepsTheRecords) {
    EXPECT_EQ(start({FakeModel{"One"}}), 0);
    EXPECT_EQ(stop(), 0);
    EXPECT_EQ(find("One"), 0);
}

TEST_F(SchemaPopulatorServiceTest, stopReleasesEachListOnce) {
    std::vector<void*> allocated;
    std::vector<void*> released;
    {
        MemoryWatch watch;
        start({withFeatures("Own", {"Alpha", "Beta"}), FakeModel{"Sharing"}, withFeatures("Empty", {}),
               FakeModel{"SharingTheEmptyOne"}, withFeatures("Later", {"Gamma"})});
        allocated = watch.allocated();
        released = watch.released();
    }
    ASSERT_THAT(allocated, SizeIs(6));
    EXPECT_THAT(released, IsEmpty());
    {
        MemoryWatch watch;
        stop();
        released = watch.released();
        stop();
        EXPECT_EQ(watch.released(), released);
    }
    EXPECT_THAT(released,
                ElementsAre(allocated[1], allocated[2], allocated[0], allocated[3], allocated[5], allocated[4]));
}

TEST_F(SchemaPopulatorServiceTest, stopAfterAFailedFirstStartReleasesItsLists) {
    host.failCall("getNextMom", -1, 2);
    std::vector<void*> allocated;
    std::vector<void*> released;
    {
        MemoryWatch watch;
        EXPECT_EQ(start({withFeatures("One", {"Alpha"}), withFeatures("Two", {"Beta"}), FakeModel{"Three"}}), -1);
        allocated = watch.allocated();
        released = watch.released();
    }
    ASSERT_THAT(allocated, SizeIs(4));
    EXPECT_THAT(released, IsEmpty());
    {
        MemoryWatch watch;
        EXPECT_EQ(stop(), 0);
        released = watch.released();
    }
    EXPECT_THAT(released, ElementsAre(allocated[1], allocated[0], allocated[3], allocated[2]));
}

TEST_F(SchemaPopulatorServiceTest, failingModelsOwnListIsReleasedAtOnce) {
    host.failCall("getMomFileName", -1, 2);
    std::vector<void*> allocated;
    std::vector<void*> released;
    {
        MemoryWatch watch;
        start({withFeatures("One", {"Alpha"}), withFeatures("Failing", {"Beta"})});
        allocated = watch.allocated();
        released = watch.released();
    }
    ASSERT_THAT(allocated, SizeIs(4));
    EXPECT_THAT(released, ElementsAre(allocated[3], allocated[2]));
}

TEST_F(SchemaPopulatorServiceTest, listThatAFailingModelSharesIsKept) {
    host.failCall("getMomFileName", -1, 2);
    std::vector<void*> allocated;
    std::vector<void*> released;
    {
        MemoryWatch watch;
        start({withFeatures("One", {"Alpha"}), FakeModel{"Failing"}});
        allocated = watch.allocated();
        released = watch.released();
    }
    EXPECT_THAT(released, IsEmpty());
    {
        MemoryWatch watch;
        stop();
        released = watch.released();
    }
    EXPECT_THAT(released, ElementsAreArray(arrayLast(allocated)));
}

TEST_F(SchemaPopulatorServiceTest, noListIsLostWhereverMemoryForAStartRunsOut) {
    host.models = {withFeatures("One", {"Alpha"}), withFeatures("Two", {"Beta"})};
    for (unsigned int nth = 1;; ++nth) {
        SCOPED_TRACE(nth);
        MemoryWatch watch;
        watch.failNew(nth);
        try {
            EXPECT_EQ(service.start(DalStateChangeReasonUnspecified), 0);
        } catch (const std::bad_alloc&) {
        }
        if (!watch.failed()) {
            break;
        }
        stop();
        EXPECT_THAT(watch.released(), UnorderedElementsAreArray(watch.allocated()));
    }
    EXPECT_EQ(find("Two"), 1);
}

TEST_F(SchemaPopulatorServiceTest, startDoesNotReleaseTheListsOfTheCatalogueBefore) {
    std::vector<void*> allocated;
    std::vector<void*> released;
    {
        MemoryWatch watch;
        start({withFeatures("One", {"Alpha"})});
        allocated = watch.allocated();
        start();
        released = watch.released();
    }
    EXPECT_THAT(released, IsEmpty());
    ASSERT_THAT(allocated, SizeIs(2));
    SchemaData::releaseOptions(static_cast<const char**>(allocated[0]));
}

// The entry points.

/// The process's one service, which the entry points lead to, started with one model.
class SchemaPopulatorEntryPointsTest : public testing::Test {
protected:
    SchemaPopulatorEntryPointsTest() {
        host.models = {FakeModel{modelName}};
        EXPECT_EQ(dalLCMinit(host.accessor(), nullptr), 0);
        EXPECT_EQ(host.component()->start(DalStateChangeReasonUnspecified), 0);
        // What is made once is made now.
        EXPECT_EQ(_tevSchemaPopulator_newMoIterator_if(txHandle, parentDn, "Schema", &iterator), 0);
        DalMoAttributeValueContainer* value = nullptr;
        EXPECT_EQ(_tevSchemaPopulator_getMoAttribute_if(txHandle, dn.c_str(), "version", &value), 0);
    }

    ~SchemaPopulatorEntryPointsTest() override {
        EXPECT_EQ(_tevSchemaPopulator_finish_if(txHandle), 0);
        EXPECT_EQ(host.component()->stop(DalStateChangeReasonUnspecified), 0);
        dalLCMterminate();
    }

    /// Checks that what the first allocation of `read` throws comes out of it, and that nothing is said of it.
    template <class Read>
    static void expectThrough(Read read) {
        const auto withoutMemory = [&read](MemoryWatch::Thrown thrown) {
            MemoryWatch watch;
            watch.failNew(1, thrown);
            read();
        };
        const LogCapture log(7);  // all but the traces, which a read begins with
        EXPECT_THROW(withoutMemory(MemoryWatch::Thrown::BadAlloc), std::bad_alloc);
        EXPECT_THROW(withoutMemory(MemoryWatch::Thrown::Int), int);
        EXPECT_THAT(log.records(), IsEmpty());
    }

    static constexpr unsigned long txHandle = 7;
    static constexpr const char* parentDn = "ManagedElement=1,SystemFunctions=1,SysM=1";
    const std::string modelName = std::string(100, 'a');  // no small string holds it
    const std::string dn = parentDn + (",Schema=" + modelName);
    FakeHost host;
    void* iterator = nullptr;
};

TEST_F(SchemaPopulatorEntryPointsTest, exceptionsOfGetMoAttributePassThrough) {
    DalMoAttributeValueContainer* value = nullptr;
    expectThrough([&] { _tevSchemaPopulator_getMoAttribute_if(txHandle, dn.c_str(), "version", &value); });
    EXPECT_EQ(value, nullptr);
}

TEST_F(SchemaPopulatorEntryPointsTest, exceptionsOfNewMoIteratorPassThrough) {
    void* another = nullptr;
    expectThrough([&] { _tevSchemaPopulator_newMoIterator_if(txHandle + 1, parentDn, "Schema", &another); });
    EXPECT_EQ(another, nullptr);
}

TEST_F(SchemaPopulatorEntryPointsTest, exceptionsOfNextMoPassThrough) {
    host.models.push_back(FakeModel{modelName});
    EXPECT_EQ(host.component()->start(DalStateChangeReasonUnspecified), 0);  // an exception passes its instance over
    char* key = nullptr;
    expectThrough([&] { _tevSchemaPopulator_nextMo_if(iterator, &key); });
    EXPECT_EQ(key, nullptr);
}

}  // namespace

}  // namespace TevTest
