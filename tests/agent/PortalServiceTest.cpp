#include "PortalService.h"

#include <gmock/gmock.h>

#include <functional>
#include <future>

#include "Diagnostics.h"
#include "Failure.h"
#include "FakeComponent.h"

namespace TevAgent {

namespace {

using testing::ElementsAre;

class PortalServiceTest : public testing::Test {
protected:
    static DalPortal_3& table() { return *static_cast<DalPortal_3*>(PortalService::accessor()->getPortal("3")); }

    /// The code of a start, or the sentence of its failure.
    std::string started() {
        try {
            portal.start();
            return "started";
        } catch (const Failure& e) {
            EXPECT_EQ(e.status(), ExitStatus::NotStarted);
            return e.what();
        }
    }

    std::vector<std::string> calls;
    TevTest::FakeComponent<1> a{"A", calls};
    TevTest::FakeComponent<2> b{"B", calls};
    PortalService portal;
};

TEST_F(PortalServiceTest, isThereInVersion3Only) {
    EXPECT_NE(PortalService::accessor()->getPortal("3"), nullptr);
    EXPECT_EQ(PortalService::accessor()->getPortal("1"), nullptr);
    EXPECT_EQ(PortalService::accessor()->getPortal("2"), nullptr);
    EXPECT_EQ(PortalService::accessor()->getPortal(""), nullptr);
    EXPECT_EQ(PortalService::accessor()->getPortal("03"), nullptr);
    EXPECT_EQ(PortalService::accessor()->getPortal(nullptr), nullptr);
}

TEST_F(PortalServiceTest, findsWhatTheAgentOffersInExactlyThatVersion) {
    DalMgmtSpiInterface_1 clock = {"Host", "Clock", "4"};
    portal.offer(clock);
    void* found = nullptr;
    EXPECT_EQ(table().getInterface("Host", "Clock", "4", &found), 0);
    EXPECT_EQ(found, &clock);
    for (const char* version : {"1", "3", "5", "04"}) {
        found = &found;
        EXPECT_EQ(table().getInterface("Host", "Clock", version, &found), -2) << version;
        EXPECT_EQ(found, nullptr) << version;
    }
}

TEST_F(PortalServiceTest, findsThePortalItself) {
    void* found = nullptr;
    EXPECT_EQ(table().getInterface("DalPortalService", "DalPortal", "3", &found), 0);
    EXPECT_EQ(found, &table());
}

TEST_F(PortalServiceTest, findsWhatARegisteredComponentOffers) {
    a.offer(a.resource.base);
    void* found = nullptr;
    EXPECT_EQ(table().getInterface("A", "DalOamSpiTransactionalResource", "2", &found), -2);
    ASSERT_EQ(table().registerComponent(&a.component), 0);
    EXPECT_EQ(table().getInterface("A", "DalOamSpiTransactionalResource", "2", &found), 0);
    EXPECT_EQ(found, &a.resource);
    ASSERT_EQ(table().unregisterComponent(&a.component), 0);
    EXPECT_EQ(table().getInterface("A", "DalOamSpiTransactionalResource", "2", &found), -2);
}

TEST_F(PortalServiceTest, refusesNullArgumentsOfALookUp) {
    void* found = &found;
    EXPECT_EQ(table().getInterface(nullptr, "I", "1", &found), -8);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(table().getInterface("C", nullptr, "1", &found), -8);
    EXPECT_EQ(table().getInterface("C", "I", nullptr, &found), -8);
    EXPECT_EQ(table().getInterface("C", "I", "1", nullptr), -8);
}

TEST_F(PortalServiceTest, refusesAFaultyComponentAndSaysWhy) {
    a.component.start = nullptr;
    Diagnostics::Capture capture;
    EXPECT_EQ(table().registerComponent(&a.component), -8);
    EXPECT_EQ(capture.takeOr(""), "component A has no start in its DalMgmtSpiComponent table");
    EXPECT_TRUE(portal.registered().empty());
}

TEST_F(PortalServiceTest, refusesASecondComponentOfOneName) {
    TevTest::FakeComponent<3> other("A", calls);
    ASSERT_EQ(table().registerComponent(&a.component), 0);
    Diagnostics::Capture capture;
    EXPECT_EQ(table().registerComponent(&other.component), -1);
    EXPECT_EQ(capture.takeOr(""), "component A is registered already");
    EXPECT_EQ(portal.registered().size(), 1U);
}

TEST_F(PortalServiceTest, takesOneAtATimeOfTwoThatRegisterUnderOneName) {
    TevTest::FakeComponent<3> other("A", calls);
    // Returns how often both were registered.
    const auto comeAndGo = [this](DalMgmtSpiComponent_2& component) {
        Diagnostics::Capture quiet;
        int meetings = 0;
        for (int round = 0; round < 300000; ++round) {
            if (table().registerComponent(&component) == 0) {
                meetings += portal.registered().size() == 1 ? 0 : 1;
                table().unregisterComponent(&component);
            }
            quiet.takeOr("");
        }
        return meetings;
    };
    auto first = std::async(std::launch::async, comeAndGo, std::ref(a.component));
    const int meetings = comeAndGo(other.component);
    EXPECT_EQ(first.get() + meetings, 0);
}

TEST_F(PortalServiceTest, refusesToForgetWhatItDoesNotKnow) {
    EXPECT_EQ(table().unregisterComponent(&a.component), -2);
    EXPECT_EQ(table().unregisterComponent(nullptr), -8);
}

TEST_F(PortalServiceTest, startsInTheOrderOfDependenciesAndStopsInReverse) {
    a.depend("B", "Service", "1");
    b.offer("Service", "2");
    ASSERT_EQ(table().registerComponent(&a.component), 0);
    ASSERT_EQ(table().registerComponent(&b.component), 0);
    EXPECT_EQ(started(), "started");
    EXPECT_EQ(portal.stop(), 0);
    EXPECT_THAT(calls, ElementsAre("B.start", "A.start", "A.stop", "B.stop"));
}

TEST_F(PortalServiceTest, stopsAComponentWhoseStartFailedAndThoseBeforeIt) {
    TevTest::FakeComponent<3> c("C", calls);
    for (DalMgmtSpiComponent_2* component : {&a.component, &b.component, &c.component}) {
        ASSERT_EQ(table().registerComponent(component), 0);
    }
    b.whenCalled("start", [] { return TevReturnT(-5); });
    EXPECT_EQ(started(), "component B returned -5 from start");
    EXPECT_EQ(portal.stop(), 0);
    EXPECT_THAT(calls, ElementsAre("A.start", "B.start", "B.stop", "A.stop"));
}

TEST_F(PortalServiceTest, anExceptionOfAStartIsItsFailure) {
    ASSERT_EQ(table().registerComponent(&a.component), 0);
    a.whenCalled("start", []() -> TevReturnT { throw 42; });
    EXPECT_EQ(started(), "component A threw in start: an exception of type int");
    EXPECT_EQ(portal.stop(), 0);
    EXPECT_THAT(calls, ElementsAre("A.start", "A.stop"));
}

TEST_F(PortalServiceTest, stopsTheOthersWhenOneDoesNotStop) {
    ASSERT_EQ(table().registerComponent(&a.component), 0);
    ASSERT_EQ(table().registerComponent(&b.component), 0);
    ASSERT_EQ(started(), "started");
    b.whenCalled("stop", [] { return TevReturnT(-7); });
    Diagnostics::Capture capture;
    EXPECT_EQ(portal.stop(), -7);
    EXPECT_EQ(capture.takeOr(""), "component B returned -7 from stop");
    EXPECT_EQ(calls.back(), "A.stop");
}

TEST_F(PortalServiceTest, stopsEachStartOnce) {
    ASSERT_EQ(table().registerComponent(&a.component), 0);
    ASSERT_EQ(started(), "started");
    portal.stop();
    portal.stop();
    EXPECT_THAT(calls, ElementsAre("A.start", "A.stop"));
    ASSERT_EQ(started(), "started");
    portal.stop();
    EXPECT_THAT(calls, ElementsAre("A.start", "A.stop", "A.start", "A.stop"));
}

TEST_F(PortalServiceTest, tellsNobodyToStartWhenADependencyIsMissing) {
    b.depend("Nobody", "Service", "1");
    ASSERT_EQ(table().registerComponent(&a.component), 0);
    ASSERT_EQ(table().registerComponent(&b.component), 0);
    EXPECT_EQ(started(),
              "component B depends on Nobody/Service version 1, which nobody offers; --component loads what does");
    portal.stop();
    EXPECT_TRUE(calls.empty());
}

TEST_F(PortalServiceTest, doesNotStopAComponentThatHasUnregistered) {
    ASSERT_EQ(table().registerComponent(&a.component), 0);
    ASSERT_EQ(started(), "started");
    ASSERT_EQ(table().unregisterComponent(&a.component), 0);
    portal.stop();
    EXPECT_THAT(calls, ElementsAre("A.start"));
}

TEST_F(PortalServiceTest, aComponentMayLookUpWhileItStarts) {
    ASSERT_EQ(table().registerComponent(&a.component), 0);
    void* found = nullptr;
    a.whenCalled("start", [&] { return table().getInterface("DalPortalService", "DalPortal", "3", &found); });
    EXPECT_EQ(started(), "started");
    EXPECT_EQ(found, &table());
    portal.stop();
}

TEST_F(PortalServiceTest, isTheOnlyOneOfTheProcess) {
    EXPECT_THROW(PortalService(), std::logic_error);
}

}  // namespace

}  // namespace TevAgent
