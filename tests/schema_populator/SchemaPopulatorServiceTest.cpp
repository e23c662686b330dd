#include "SchemaPopulatorService.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "FakeHost.h"
#include "LogCapture.h"
#include "MemoryWatch.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;
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
        start({withFeatures("One", {"Alpha", "Beta"}), FakeModel{"Two"}});
        allocated = watch.allocated();
        released = watch.released();
    }
    ASSERT_THAT(allocated, SizeIs(3));
    EXPECT_THAT(released, IsEmpty());
    {
        MemoryWatch watch;
        stop();
        released = watch.released();
        stop();
        EXPECT_EQ(watch.released(), released);
    }
    EXPECT_THAT(released, ElementsAreArray(arrayLast(allocated)));
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

}  // namespace

}  // namespace TevTest
