#include "Agent.h"

#include <gmock/gmock.h>

#include "DalOamSpiModelRepository.h"
#include "Failure.h"
#include "LogCapture.h"
#include "ObjectReader.h"
#include "Operation.h"
#include "Portal.h"
#include "TestNode.h"

namespace TevAgent {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string library(const std::string& name) {
    return std::string(TEV_HOSTILE_COMPONENTS) + "/" + name + ".so";
}

class AgentTest : public testing::Test {
protected:
    Agent::Inputs inputs() const {
        return {node.path() + "/models", node.path() + "/managed-objects.xml",
                node.path() + "/libtev_schema_populator.cfg"};
    }

    const TevTest::LogCapture quiet{0};
    TevTest::TestNode node;
};

TEST_F(AgentTest, offersEveryServiceToComponentsAndTheCommonLibrary) {
    const Agent agent(inputs());
    for (const InterfaceId& service :
         {InterfaceId("DalPortalService", "DalPortal", "3"),
          InterfaceId("DalOamSpiTransactionService", "DalOamSpiTransaction", "2"),
          InterfaceId("DalMgmtSpiThreadContextService", "DalMgmtSpiThreadContext", "2"),
          InterfaceId("DalOamSpiModelRepositoryService", "DalOamSpiModelRepository", "4"),
          InterfaceId("DalOamSpiModelRepositoryService", "DalOamSpiModelRepositoryExtension", "1"),
          InterfaceId("DalOamSpiCmRouterService", "DalOamSpiManagedObject", "1")}) {
        void* table = nullptr;
        EXPECT_EQ(
            Tev::Portal::getInterface(service.component.c_str(), service.name.c_str(), service.version.c_str(), &table),
            0)
            << service.text();
        ASSERT_NE(table, nullptr) << service.text();
        EXPECT_TRUE(service.names(*static_cast<DalMgmtSpiInterface_1*>(table))) << service.text();
    }
}

TEST_F(AgentTest, takesItsPortalBackAtItsEnd) {
    { const Agent agent(inputs()); }
    void* table = nullptr;
    EXPECT_EQ(Tev::Portal::getInterface("DalPortalService", "DalPortal", "3", &table), -1);
}

TEST_F(AgentTest, namesTheComponentThatALibraryRegisters) {
    Agent agent(inputs());
    EXPECT_EQ(agent.initialize(agent.open(library("votes_no"))), "TevSchemaMoService");
    EXPECT_EQ(agent.initialize(agent.open(library("circle_left"))), "LeftService");
}

TEST_F(AgentTest, putsSchemasUnderTheFirstSysMObject) {
    const Agent agent(inputs());
    EXPECT_EQ(agent.schemaParent(), "ManagedElement=1,SystemFunctions=1,SysM=7");
    EXPECT_EQ(agent.schemaDn("x"), "ManagedElement=1,SystemFunctions=1,SysM=7,Schema=x");
}

TEST_F(AgentTest, putsSchemasUnderTheUsualDnWithoutManagedObjects) {
    const Agent agent({node.path() + "/models", "", ""});
    EXPECT_EQ(agent.schemaParent(), "ManagedElement=1,SystemFunctions=1,SysM=1");
}

TEST_F(AgentTest, refusesInputsThatCannotBeUsed) {
    for (const Agent::Inputs& bad : {Agent::Inputs{"/nowhere", "", ""}, Agent::Inputs{"", "/nowhere", ""}}) {
        try {
            const Agent agent(bad);
            FAIL() << "the inputs were taken";
        } catch (const Failure& e) {
            EXPECT_EQ(e.status(), ExitStatus::NotStarted);
            EXPECT_THAT(e.what(), HasSubstr("/nowhere"));
        }
    }
}

TEST_F(AgentTest, readsThroughAComponentUntilItIsStopped) {
    Agent agent(inputs());
    agent.initialize(agent.open(TEV_COMPONENT_LIBRARY));
    agent.start();
    {
        Operation operation(agent);
        EXPECT_THAT(operation.reader().keys(agent.schemaParent(), "Schema"),
                    ElementsAre("Equipment", "Plain", "Transport"));
        const Instance instance = operation.reader().read(agent.schemaDn("Transport"), {"version", "schemaId"});
        ASSERT_EQ(instance.attributes.size(), 2U);
        EXPECT_EQ(instance.attributes[0].name, "version");
        EXPECT_THAT(instance.attributes[0].values, ElementsAre("2.1.5"));
        operation.commit();
    }
    EXPECT_EQ(agent.stop(), 0);
    Operation operation(agent);
    EXPECT_THROW(operation.reader().keys(agent.schemaParent(), "Schema"), Failure);
}

TEST_F(AgentTest, startsAComponentAgainAfterAStop) {
    Agent agent(inputs());
    agent.initialize(agent.open(TEV_COMPONENT_LIBRARY));
    agent.start();
    EXPECT_EQ(agent.stop(), 0);
    agent.start();
    Operation operation(agent);
    EXPECT_EQ(operation.reader().keys(agent.schemaParent(), "Schema").size(), 3U);
    operation.commit();
}

}  // namespace

}  // namespace TevAgent
