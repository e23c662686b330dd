#include "DalComponent.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

/// The host's side: what it was asked, and what it answers.
struct Host {
    std::vector<std::string> calls;
    TevReturnT registration = 0;
    bool hasPortal = true;
    DalMgmtSpiComponent_2* registered = nullptr;
};

Host host;

TevReturnT registerComponent(DalMgmtSpiComponent_2* component) {
    host.calls.emplace_back("register");
    host.registered = component;
    return host.registration;
}

TevReturnT unregisterComponent(DalMgmtSpiComponent_2* component) {
    host.calls.emplace_back("unregister");
    EXPECT_EQ(component, host.registered);
    return -2;  // is of no account
}

DalPortal_3 portalTable{
    {"DalPortalService", "DalPortal", "3"}, nullptr, nullptr, registerComponent, unregisterComponent};
int oldPortal = 0;

void* getPortal(const char* version) {
    host.calls.push_back(std::string("portal ") + version);
    if (std::strcmp(version, "3") == 0) {
        return host.hasPortal ? &portalTable : nullptr;
    }
    return &oldPortal;
}

DalPortalAccessor accessor{getPortal};

DalMgmtSpiInterface_1 offered{"Tiny", "Service", "1"};
DalMgmtSpiInterface_1 needed{"Other", "Service", "4"};

class TinyComponent : public Tev::DalComponent<TinyComponent> {
public:
    explicit TinyComponent(const char* name = "Tiny") : DalComponent(name) {
        interfaces.push_back(&offered);
        dependencies.push_back(&needed);
    }

    TevReturnT initialize(const char* configuration) {
        host.calls.push_back(std::string("initialize ") + (configuration == nullptr ? "without" : configuration));
        return initialization;
    }
    TevReturnT start(DalStateChangeReason /*reason*/) { return 11; }
    TevReturnT stop(DalStateChangeReason /*reason*/) { return 12; }
    void terminate() { host.calls.emplace_back(portal == nullptr ? "terminate without portal" : "terminate"); }

    const DalMgmtSpiComponent_2& table() const { return component; }
    const void* currentPortal() const { return portal; }
    const void* currentPortalV1() const { return portalV1; }
    const DalPortalAccessor* currentAccessor() const { return portalAccessor; }

    std::vector<std::size_t> arraySizes() const {
        return {interfaceArray.size(), dependencyArray.size(), extraArray.size()};
    }

    TevReturnT initialization = 0;
};

/// What a null-terminated array holds.
std::vector<const DalMgmtSpiInterface_1*> entries(DalMgmtSpiInterface_1** array) {
    std::vector<const DalMgmtSpiInterface_1*> list;
    for (; *array != nullptr; ++array) {
        list.push_back(*array);
    }
    return list;
}

/// Begins with a new host.
class DalComponentTest : public testing::Test {
protected:
    DalComponentTest() { host = Host(); }

    TinyComponent component;
};

TEST_F(DalComponentTest, tableNamesTheComponent) {
    const DalMgmtSpiComponent_2& table = component.table();
    EXPECT_STREQ(table.base.componentName, "Tiny");
    EXPECT_STREQ(table.base.interfaceName, "DalMgmtSpiComponent");
    EXPECT_STREQ(table.base.interfaceVersion, "2");
    EXPECT_FALSE(table.flag);
}

TEST_F(DalComponentTest, newComponentHasNoPortal) {
    EXPECT_THAT(component.currentAccessor(), IsNull());
    EXPECT_THAT(component.currentPortal(), IsNull());
    EXPECT_THAT(component.currentPortalV1(), IsNull());
    EXPECT_THAT(component.table().interfaceArray, IsNull());
    EXPECT_THAT(component.table().dependencyArray, IsNull());
    EXPECT_THAT(component.table().extraArray, IsNull());
    EXPECT_THAT(host.calls, IsEmpty());
}

TEST_F(DalComponentTest, isRegisteredThenInitialized) {
    EXPECT_EQ(component.registerComponent(&accessor, "file.cfg"), 0);
    EXPECT_THAT(host.calls, ElementsAre("portal 3", "portal 1", "register", "initialize file.cfg"));
    EXPECT_EQ(host.registered, &component.table());
    EXPECT_EQ(component.currentAccessor(), &accessor);
    EXPECT_EQ(component.currentPortal(), &portalTable);
    EXPECT_EQ(component.currentPortalV1(), &oldPortal);
}

TEST_F(DalComponentTest, configurationMayBeNull) {
    EXPECT_EQ(component.registerComponent(&accessor, nullptr), 0);
    EXPECT_EQ(host.calls.back(), "initialize without");
}

TEST_F(DalComponentTest, registrationGivesWhatInitializeReturns) {
    component.initialization = 7;
    EXPECT_EQ(component.registerComponent(&accessor, nullptr), 7);
}

TEST_F(DalComponentTest, refusedRegistrationIsHandedOnWithoutInitializing) {
    host.registration = 9;
    EXPECT_EQ(component.registerComponent(&accessor, "file.cfg"), 9);
    EXPECT_THAT(host.calls, ElementsAre("portal 3", "portal 1", "register"));
}

TEST_F(DalComponentTest, withoutPortalNothingIsRegistered) {
    host.hasPortal = false;
    EXPECT_EQ(component.registerComponent(&accessor, "file.cfg"), -1);
    EXPECT_THAT(host.calls, ElementsAre("portal 3", "portal 1"));
    EXPECT_THAT(component.table().interfaceArray, IsNull());
}

TEST_F(DalComponentTest, arraysHoldTheListsWithThePortalAsFirstDependency) {
    component.registerComponent(&accessor, nullptr);
    EXPECT_THAT(entries(component.table().interfaceArray), ElementsAre(&offered));
    EXPECT_THAT(entries(component.table().dependencyArray), ElementsAre(&Tev::Portal::COMP_ID, &needed));
    EXPECT_THAT(entries(component.table().extraArray), IsEmpty());
}

TEST_F(DalComponentTest, registeringAgainDoesNotDoubleTheArrays) {
    component.registerComponent(&accessor, nullptr);
    component.unregisterComponent();
    EXPECT_EQ(component.registerComponent(&accessor, nullptr), 0);
    EXPECT_THAT(entries(component.table().interfaceArray), ElementsAre(&offered));
    EXPECT_THAT(entries(component.table().dependencyArray), ElementsAre(&Tev::Portal::COMP_ID, &needed));
    EXPECT_THAT(entries(component.table().extraArray), IsEmpty());
    EXPECT_THAT(component.arraySizes(), ElementsAre(2U, 3U, 1U));
}

TEST_F(DalComponentTest, portalItselfDoesNotDependOnThePortal) {
    // Known by its name, not by where the name is stored.
    const std::string name = Tev::Portal::COMP_ID.componentName;
    TinyComponent portalComponent(name.c_str());
    portalComponent.registerComponent(&accessor, nullptr);
    EXPECT_THAT(entries(portalComponent.table().dependencyArray), ElementsAre(&needed));
}

TEST_F(DalComponentTest, isTerminatedThenTakenOffThePortal) {
    component.registerComponent(&accessor, nullptr);
    host.calls.clear();
    component.unregisterComponent();
    EXPECT_THAT(host.calls, ElementsAre("terminate", "unregister"));
    EXPECT_THAT(component.currentPortal(), IsNull());
}

TEST_F(DalComponentTest, withoutPortalUnregisteringOnlyTerminates) {
    component.unregisterComponent();
    EXPECT_THAT(host.calls, ElementsAre("terminate without portal"));
}

TEST_F(DalComponentTest, startAndStopReachTheOneObject) {
    TinyComponent& instance = TinyComponent::instance();
    EXPECT_EQ(&instance, &TinyComponent::instance());
    EXPECT_EQ(instance.table().start(DalStateChangeReasonUnspecified), 11);
    EXPECT_EQ(instance.table().stop(DalStateChangeReasonUnspecified), 12);
}

}  // namespace
