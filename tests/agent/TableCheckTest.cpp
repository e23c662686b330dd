#include "TableCheck.h"

#include <gmock/gmock.h>

#include <functional>

#include "FakeComponent.h"

namespace TevAgent {

namespace {

/// A well-formed component, for a test to damage.
class TableCheckTest : public testing::Test {
protected:
    TableCheckTest() {
        fake.offer(fake.resource.base);
        fake.offer(fake.objects.base);
        fake.depend("DalPortalService", "DalPortal", "3");
    }

    std::string fault() const { return TableCheck::faultOf(&fake.component); }

    std::vector<std::string> calls;
    TevTest::FakeComponent<> fake{"Fake", calls};
};

TEST_F(TableCheckTest, findsNoFaultInAWellFormedComponent) {
    EXPECT_EQ(fault(), "");
}

TEST_F(TableCheckTest, findsNoFaultInAComponentThatOffersNothing) {
    DalMgmtSpiInterface_1* none = nullptr;
    fake.component.interfaceArray = &none;
    EXPECT_EQ(fault(), "");
}

TEST_F(TableCheckTest, refusesANullTable) {
    EXPECT_EQ(TableCheck::faultOf(static_cast<const DalMgmtSpiComponent_2*>(nullptr)),
              "a null component table was registered");
}

TEST_F(TableCheckTest, refusesAComponentWithoutAName) {
    fake.component.base.componentName = nullptr;
    EXPECT_EQ(fault(), "a component without a name was registered");
    fake.component.base.componentName = "";
    EXPECT_EQ(fault(), "a component without a name was registered");
}

TEST_F(TableCheckTest, refusesAComponentTableWithoutInterfaceNameOrVersion) {
    fake.component.base.interfaceVersion = nullptr;
    EXPECT_EQ(fault(), "component Fake has no interface name or version in its component table");
    fake.component.base = {"Fake", nullptr, "2"};
    EXPECT_EQ(fault(), "component Fake has no interface name or version in its component table");
}

TEST_F(TableCheckTest, refusesAComponentTableOfAnotherInterfaceOrVersion) {
    fake.component.base.interfaceName = "DalPortal";
    EXPECT_EQ(fault(), "component Fake registers a DalPortal table where a DalMgmtSpiComponent table belongs");
    fake.component.base = {"Fake", "DalMgmtSpiComponent", "3"};
    EXPECT_EQ(fault(), "component Fake offers DalMgmtSpiComponent version 3, but this agent knows version 2");
}

TEST_F(TableCheckTest, refusesNullArraysAndMissingFunctions) {
    const auto without = [this](const std::function<void(DalMgmtSpiComponent_2&)>& remove) {
        DalMgmtSpiComponent_2 damaged = fake.component;
        remove(damaged);
        return TableCheck::faultOf(&damaged);
    };
    EXPECT_EQ(without([](auto& table) { table.interfaceArray = nullptr; }),
              "component Fake has no interface array in its DalMgmtSpiComponent table");
    EXPECT_EQ(without([](auto& table) { table.dependencyArray = nullptr; }),
              "component Fake has no dependency array in its DalMgmtSpiComponent table");
    EXPECT_EQ(without([](auto& table) { table.extraArray = nullptr; }),
              "component Fake has no extra array in its DalMgmtSpiComponent table");
    EXPECT_EQ(without([](auto& table) { table.start = nullptr; }),
              "component Fake has no start in its DalMgmtSpiComponent table");
    EXPECT_EQ(without([](auto& table) { table.stop = nullptr; }),
              "component Fake has no stop in its DalMgmtSpiComponent table");
}

TEST_F(TableCheckTest, refusesATransactionalResourceThatLacksAFunction) {
    using Resource = DalOamSpiTransactionalResource_2;
    const Resource whole = fake.resource;
    const auto faultWithout = [&](const char* name, const std::function<void(Resource&)>& remove) {
        fake.resource = whole;
        remove(fake.resource);
        EXPECT_EQ(fault(),
                  std::string("component Fake has no ") + name + " in its DalOamSpiTransactionalResource table");
        EXPECT_EQ(TableCheck::faultOf(&fake.resource), fault());
    };
    faultWithout("join", [](Resource& table) { table.join = nullptr; });
    faultWithout("prepare", [](Resource& table) { table.prepare = nullptr; });
    faultWithout("commit", [](Resource& table) { table.commit = nullptr; });
    faultWithout("abort", [](Resource& table) { table.abort = nullptr; });
    faultWithout("finish", [](Resource& table) { table.finish = nullptr; });
    faultWithout("validate", [](Resource& table) { table.validate = nullptr; });
}

TEST_F(TableCheckTest, refusesManagedObjectsThatLackAFunction) {
    using Objects = DalOamSpiManagedObject_1;
    const Objects whole = fake.objects;
    const auto faultWithout = [&](const char* name, const std::function<void(Objects&)>& remove) {
        fake.objects = whole;
        remove(fake.objects);
        EXPECT_EQ(fault(), std::string("component Fake has no ") + name + " in its DalOamSpiManagedObject table");
    };
    faultWithout("setMoAttribute", [](Objects& table) { table.setMoAttribute = nullptr; });
    faultWithout("getMoAttribute", [](Objects& table) { table.getMoAttribute = nullptr; });
    faultWithout("newMoIterator", [](Objects& table) { table.newMoIterator = nullptr; });
    faultWithout("nextMo", [](Objects& table) { table.nextMo = nullptr; });
    faultWithout("createMo", [](Objects& table) { table.createMo = nullptr; });
    faultWithout("deleteMo", [](Objects& table) { table.deleteMo = nullptr; });
    faultWithout("action", [](Objects& table) { table.action = nullptr; });
}

TEST_F(TableCheckTest, refusesTablesOfVersionsThatTheAgentDoesNotKnow) {
    fake.objects.base.interfaceVersion = "2";
    EXPECT_EQ(fault(), "component Fake offers DalOamSpiManagedObject version 2, but this agent knows version 1");
    fake.resource.base.interfaceVersion = "1";
    EXPECT_EQ(fault(),
              "component Fake offers DalOamSpiTransactionalResource version 1, but this agent knows version 2");
}

TEST_F(TableCheckTest, refusesATableInTheNameOfAnotherComponent) {
    fake.objects.base.componentName = "Other";
    EXPECT_EQ(fault(), "component Fake offers a table in the name of component Other");
}

TEST_F(TableCheckTest, refusesAnOfferOrDependencyWithoutATextInItsDescriptor) {
    fake.objects.base.interfaceName = nullptr;
    EXPECT_EQ(fault(), "component Fake offers a table without a component name, interface name or version");
    fake.objects.base.interfaceName = "DalOamSpiManagedObject";
    fake.depend("A", "", "1");
    EXPECT_EQ(fault(), "component Fake has a dependency without a component name, interface name or version");
}

TEST_F(TableCheckTest, refusesManagedObjectsThatTakePartInNoTransaction) {
    DalMgmtSpiInterface_1* offers[] = {&fake.objects.base, nullptr};
    fake.component.interfaceArray = offers;
    EXPECT_EQ(fault(), "component Fake offers managed objects but no DalOamSpiTransactionalResource");
}

TEST_F(TableCheckTest, refusesANullOrNamelessParticipant) {
    EXPECT_EQ(TableCheck::faultOf(static_cast<const DalOamSpiTransactionalResource_2*>(nullptr)),
              "a null participant was registered");
    fake.resource.base.componentName = nullptr;
    EXPECT_EQ(TableCheck::faultOf(&fake.resource),
              "a participant without a component name, interface name or version was registered");
}

}  // namespace

}  // namespace TevAgent
