#include "StartOrder.h"

#include <gmock/gmock.h>

#include "Failure.h"
#include "FakeComponent.h"

namespace TevAgent {

namespace {

class StartOrderTest : public testing::Test {
protected:
    /// The names in the order of their start, or the sentence of the failure.
    static std::vector<std::string> order(const std::vector<DalMgmtSpiComponent_2*>& tables) {
        StartOrder::Components components;
        for (DalMgmtSpiComponent_2* table : tables) {
            components.push_back(std::make_shared<Component>(*table));
        }
        try {
            std::vector<std::string> names;
            for (const auto& component : StartOrder::of({{"Host", "Clock", "4"}}, components)) {
                names.push_back(component->name());
            }
            return names;
        } catch (const Failure& e) {
            EXPECT_EQ(e.status(), ExitStatus::NotStarted);
            return {e.what()};
        }
    }

    std::vector<std::string> calls;
    TevTest::FakeComponent<1> a{"A", calls};
    TevTest::FakeComponent<2> b{"B", calls};
    TevTest::FakeComponent<3> c{"C", calls};
};

using testing::ElementsAre;

TEST_F(StartOrderTest, startsIndependentComponentsInTheOrderGiven) {
    EXPECT_THAT(order({&b.component, &a.component}), ElementsAre("B", "A"));
}

TEST_F(StartOrderTest, startsAComponentAfterThoseThatItDependsOn) {
    a.depend("B", "Service", "1");
    b.offer("Service", "1");
    b.depend("C", "Service", "1");
    c.offer("Service", "1");
    EXPECT_THAT(order({&a.component, &b.component, &c.component}), ElementsAre("C", "B", "A"));
}

TEST_F(StartOrderTest, aHigherVersionOfTheAgentOrOfAComponentMeetsADependency) {
    a.depend("Host", "Clock", "1");
    a.depend("B", "Service", "9");
    b.offer("Service", "10");
    EXPECT_THAT(order({&a.component, &b.component}), ElementsAre("B", "A"));
}

TEST_F(StartOrderTest, thePortalIsAlwaysThere) {
    a.depend("DalPortalService", "DalPortal", "99");
    EXPECT_THAT(order({&a.component}), ElementsAre("A"));
}

TEST_F(StartOrderTest, namesADependencyThatNobodyOffers) {
    a.depend("Nobody", "Service", "1");
    EXPECT_THAT(
        order({&b.component, &a.component}),
        ElementsAre(
            "component A depends on Nobody/Service version 1, which nobody offers; --component loads what does"));
}

TEST_F(StartOrderTest, aLowerVersionDoesNotMeetADependency) {
    a.depend("Host", "Clock", "5");
    EXPECT_THAT(
        order({&a.component}),
        ElementsAre("component A depends on Host/Clock version 5, which nobody offers; --component loads what does"));
}

TEST_F(StartOrderTest, namesTheMissingDependencyOfAComponentThatOthersWaitFor) {
    a.depend("B", "Service", "1");
    b.offer("Service", "1");
    b.depend("Nobody", "Service", "1");
    EXPECT_THAT(
        order({&a.component, &b.component}),
        ElementsAre(
            "component B depends on Nobody/Service version 1, which nobody offers; --component loads what does"));
}

TEST_F(StartOrderTest, namesTheComponentsOfACircleAndNotThoseThatOnlyWaitForIt) {
    a.depend("B", "Service", "1");
    b.offer("Service", "1");
    b.depend("C", "Service", "1");
    c.offer("Service", "1");
    c.depend("B", "Service", "1");
    EXPECT_THAT(order({&a.component, &b.component, &c.component}),
                ElementsAre("components depend on each other in a circle: B -> C -> B; leave one of them out"));
}

TEST_F(StartOrderTest, aComponentThatDependsOnItselfIsACircle) {
    a.offer("Service", "1");
    a.depend("A", "Service", "1");
    EXPECT_THAT(order({&a.component}),
                ElementsAre("components depend on each other in a circle: A -> A; leave one of them out"));
}

}  // namespace

}  // namespace TevAgent
