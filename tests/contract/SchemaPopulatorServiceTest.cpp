#include "SchemaPopulatorService.h"

#include <gtest/gtest.h>

#include "FakeHost.h"
#include "LogCapture.h"

namespace TevTest {

namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* serviceFile = "src/schema_populator/SchemaPopulatorService";

}  // namespace

/// A service object of a test's own: the process's one has been started by whatever ran before, and its entry points
/// refuse what is looked at here.
class SchemaPopulatorServiceTest : public testing::Test {
protected:
    TevReturnT start() { return service.start(DalStateChangeReasonUnspecified); }

    FakeHost host;
    TevSchemaPopulator::SchemaPopulatorService service;
    LogCapture log;
};

TEST_F(SchemaPopulatorServiceTest, newServiceIsNotStarted) {
    EXPECT_FALSE(service.isStarted());
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(SchemaPopulatorServiceTest, isStartedFromASuccessfulStartToTheNextStop) {
    ASSERT_EQ(service.registerComponent(host.accessor(), nullptr), 0);
    EXPECT_FALSE(service.isStarted());
    EXPECT_EQ(start(), 0);
    EXPECT_TRUE(service.isStarted());
    EXPECT_EQ(service.stop(DalStateChangeReasonUnspecified), 0);
    EXPECT_FALSE(service.isStarted());
}

TEST_F(SchemaPopulatorServiceTest, joinBeforeAnyStartFails) {
    ASSERT_EQ(service.registerComponent(host.accessor(), nullptr), 0);
    log.clear();
    EXPECT_EQ(service.join(1), -1);
    EXPECT_THAT(log.records(),
                ElementsAreArray(message(3, serviceFile, "join", "transaction Service is not avaliable")));
    EXPECT_THAT(host.participants(1), IsEmpty());
}

TEST_F(SchemaPopulatorServiceTest, joinFailsAfterAStartWithoutTransactionService) {
    ASSERT_EQ(service.registerComponent(host.accessor(), nullptr), 0);
    host.failCall("getInterface", -2, 1);
    EXPECT_EQ(start(), -2);
    EXPECT_EQ(service.join(1), -1);
}

TEST_F(SchemaPopulatorServiceTest, joinWorksAfterAStartThatFailedAtTheThreadContext) {
    ASSERT_EQ(service.registerComponent(host.accessor(), nullptr), 0);
    host.failCall("getInterface", -2, 2);
    EXPECT_EQ(start(), -2);
    EXPECT_FALSE(service.isStarted());
    log.clear();
    EXPECT_EQ(service.join(1), 0);
    EXPECT_EQ(host.participants(1).size(), 1U);
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(SchemaPopulatorServiceTest, joinWorksAfterStop) {
    ASSERT_EQ(service.registerComponent(host.accessor(), nullptr), 0);
    ASSERT_EQ(start(), 0);
    ASSERT_EQ(service.stop(DalStateChangeReasonUnspecified), 0);
    EXPECT_EQ(service.join(1), 0);
}

TEST_F(SchemaPopulatorServiceTest, stopOfANewServiceSucceeds) {
    EXPECT_EQ(service.stop(DalStateChangeReasonUnspecified), 0);
    EXPECT_FALSE(service.isStarted());
}

TEST_F(SchemaPopulatorServiceTest, unregisterOfANewServiceCallsNobody) {
    service.unregisterComponent();
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(SchemaPopulatorServiceTest, initializeNeedsNoPortal) {
    EXPECT_EQ(service.initialize(nullptr), 0);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(SchemaPopulatorServiceTest, instanceIsOneForTheProcess) {
    using Component = Tev::DalComponent<TevSchemaPopulator::SchemaPopulatorService>;
    EXPECT_EQ(&Component::instance(), &Component::instance());
    EXPECT_NE(&Component::instance(), &service);
    EXPECT_EQ(service.getSchemaMoImpl(), service.getSchemaMoImpl());
    EXPECT_NE(service.getSchemaMoImpl(), Component::instance().getSchemaMoImpl());
}

}  // namespace TevTest
