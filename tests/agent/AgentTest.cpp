#include "Agent.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <filesystem>

#include "DalOamSpiModelRepository.h"
#include "Failure.h"
#include "LogCapture.h"
#include "MoAccessor.h"
#include "ObjectReader.h"
#include "Operation.h"
#include "Portal.h"
#include "SchemaConfiguration.h"
#include "ScopedTransaction.h"
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
        EXPECT_EQ(InterfaceId(*static_cast<DalMgmtSpiInterface_1*>(table)).text(), service.text());
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

TEST_F(AgentTest, knowsTheSizeOfTheModelThatIsShown) {
    node.writeModel("0.xml", "<mom name=\"Twice\" version=\"2\"/>");
    node.writeModel("9.xml", "<mom name=\"Twice\" version=\"1\"/> ");
    node.writeModel("gone.xml", "<mom name=\"Gone\"/>");
    const Agent agent(inputs());
    EXPECT_EQ(agent.modelSize("Twice"), std::filesystem::file_size(node.path() + "/models/9.xml"));
    EXPECT_EQ(agent.modelSize("Nothing"), std::nullopt);
    std::filesystem::remove(node.path() + "/models/gone.xml");
    EXPECT_EQ(agent.modelSize("Gone"), std::nullopt);
}

TEST_F(AgentTest, knowsHowLongATransferMayTake) {
    const auto timeoutWith = [this](const std::string& content) {
        const TevTest::TempFolder folder;
        Agent::Inputs changed = inputs();
        changed.configuration = folder.write("libtev_schema_populator.cfg", content);
        return Agent(changed).transferTimeout().count();
    };
    const std::string one = "<TevSchemaMoService><sftpTimeout>60000</sftpTimeout></TevSchemaMoService>";
    EXPECT_EQ(timeoutWith("<configuration>" + one + "</configuration>"), 60000);
    const long usual = TevSchemaPopulator::SchemaConfiguration().getSftpTimeout();
    EXPECT_EQ(timeoutWith("<configuration>" + one + one + "</configuration>"), usual);
    EXPECT_EQ(timeoutWith("<configuration><TevSchemaMoService/></configuration>"), usual);
    EXPECT_EQ(timeoutWith("<configuration/>"), usual);
    EXPECT_EQ(Agent({node.path() + "/models", "", ""}).transferTimeout().count(), usual);
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

TEST_F(AgentTest, servesEveryValueTypeToTheAccessorsOfComponents) {
    node.writeObjects(R"(<managedObjects>
        <mo class="ManagedElement" id="1"/>
        <mo class="ManagedElement" id="2"><mo class="Board" id="a b">
          <attribute name="string" type="string"><value>north</value><value>sea</value></attribute>
          <attribute name="reference" type="reference"><value>ManagedElement=1</value></attribute>
          <attribute name="int8" type="int8"><value>-128</value></attribute>
          <attribute name="int16" type="int16"><value>-32768</value></attribute>
          <attribute name="int32" type="int32"><value>-2147483648</value></attribute>
          <attribute name="int64" type="int64"><value>-9223372036854775808</value></attribute>
          <attribute name="uint8" type="uint8"><value>255</value></attribute>
          <attribute name="uint16" type="uint16"><value>65535</value></attribute>
          <attribute name="uint32" type="uint32"><value>4294967295</value></attribute>
          <attribute name="uint64" type="uint64"><value>18446744073709551615</value></attribute>
          <attribute name="bool" type="bool"><value>true</value></attribute>
          <attribute name="enum" type="enum"><value>-3</value></attribute>
          <attribute name="double" type="double"><value>0.5</value></attribute>
        </mo></mo>
      </managedObjects>)");
    Agent agent(inputs());
    ScopedTransaction transaction(agent.transactions());
    Tev::MoAccessor accessor(true, 1, 60);
    accessor.useTransaction(transaction.handle());
    std::string dn;
    accessor.getFirstMoInstance("ManagedElement,Board", dn);
    EXPECT_EQ(dn, "ManagedElement=2,Board=a b");
    EXPECT_THAT(accessor.getSeqAttr<std::string>(dn, "string"), ElementsAre("north", "sea"));
    EXPECT_EQ(accessor.getAttr<std::string>(dn, "reference"), "ManagedElement=1");
    EXPECT_EQ(accessor.getAttr<std::int8_t>(dn, "int8"), INT8_MIN);
    EXPECT_EQ(accessor.getAttr<std::int16_t>(dn, "int16"), INT16_MIN);
    EXPECT_EQ(accessor.getAttr<std::int32_t>(dn, "int32"), INT32_MIN);
    EXPECT_EQ(accessor.getAttr<std::int64_t>(dn, "int64"), INT64_MIN);
    EXPECT_EQ(accessor.getAttr<std::uint8_t>(dn, "uint8"), UINT8_MAX);
    EXPECT_EQ(accessor.getAttr<std::uint16_t>(dn, "uint16"), UINT16_MAX);
    EXPECT_EQ(accessor.getAttr<std::uint32_t>(dn, "uint32"), UINT32_MAX);
    EXPECT_EQ(accessor.getAttr<std::uint64_t>(dn, "uint64"), UINT64_MAX);
    EXPECT_TRUE(accessor.getAttr<bool>(dn, "bool"));
    EXPECT_EQ(accessor.getAttr<std::int64_t>(dn, "enum"), -3);
    EXPECT_EQ(accessor.getAttr<double>(dn, "double"), 0.5);
    EXPECT_EQ(transaction.commit(), 0);
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
