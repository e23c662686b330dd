#include "RouteTable.h"

#include <gmock/gmock.h>

#include "Failure.h"

namespace TevAgent {

namespace {

const Route schema = {"Schema", {"ManagedElement", "SystemFunctions", "SysM"}, "SchemaService"};
const Route alarm = {"Alarm", {"ManagedElement"}, "AlarmService"};
const Route otherAlarm = {"Alarm", {"ManagedElement", "Equipment"}, "EquipmentService"};

std::string ownerOf(const Route* route) {
    return route == nullptr ? "" : route->component;
}

TEST(RouteTableTest, aDnGoesByItsFirstRoutedRdn) {
    const RouteTable table({schema, alarm});
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,SystemFunctions=1,SysM=1,Schema=a")), "SchemaService");
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,SystemFunctions=1,SysM=1,Schema=a,Alarm=1")), "SchemaService");
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,Alarm=1,Schema=a")), "AlarmService");
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,SystemFunctions=1,SysM=1")), "");
}

TEST(RouteTableTest, aDnThatIsMalformedBehindItsClassIsLeftToTheOwnerToJudge) {
    const RouteTable table({schema});
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,SystemFunctions=1,SysM=1,Schema=")), "SchemaService");
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,Schema=a=b")), "SchemaService");
    EXPECT_EQ(ownerOf(table.ofDn("Schema")), "SchemaService");
    EXPECT_EQ(ownerOf(table.ofDn("")), "");
    EXPECT_EQ(ownerOf(table.ofDn(",,=,")), "");
}

TEST(RouteTableTest, classNamesAreComparedBytewise) {
    const RouteTable table({schema});
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,schema=a")), "");
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,Schema2=a")), "");
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=Schema")), "");
}

TEST(RouteTableTest, aListingGoesByItsClassName) {
    const RouteTable table({schema});
    EXPECT_EQ(ownerOf(table.ofClass("ManagedElement=1,SystemFunctions=1,SysM=1", "Schema")), "SchemaService");
    EXPECT_EQ(ownerOf(table.ofClass("ManagedElement=1", "Schema")), "SchemaService");
    EXPECT_EQ(ownerOf(table.ofClass("", "Schema")), "SchemaService");
    EXPECT_EQ(ownerOf(table.ofClass("ManagedElement=1,SystemFunctions=1,SysM=1", "Other")), "");
}

TEST(RouteTableTest, oneClassUnderSeveralParentsGoesByTheClassesAboveIt) {
    const RouteTable table({alarm, otherAlarm});
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,Alarm=1")), "AlarmService");
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,Equipment=1,Alarm=1")), "EquipmentService");
    EXPECT_EQ(ownerOf(table.ofClass("ManagedElement=1,Equipment=1", "Alarm")), "EquipmentService");
    EXPECT_EQ(ownerOf(table.ofClass("Elsewhere=1", "Alarm")), "AlarmService");
}

TEST(RouteTableTest, aClassAtTheRootHasNoParents) {
    const RouteTable table({{"Alarm", {}, "RootService"}, alarm});
    EXPECT_EQ(ownerOf(table.ofClass("", "Alarm")), "RootService");
    EXPECT_EQ(ownerOf(table.ofDn("Alarm=1")), "RootService");
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,Alarm=1")), "AlarmService");
}

TEST(RouteTableTest, refusesAClassThatIsRoutedToTwoComponents) {
    try {
        const RouteTable table({alarm, {"Alarm", {"ManagedElement"}, "Thief"}});
        FAIL() << "the routes were taken";
    } catch (const Failure& e) {
        EXPECT_EQ(e.status(), ExitStatus::NotStarted);
        EXPECT_STREQ(e.what(),
                     "class Alarm is routed to two components, AlarmService and Thief; take the route to the latter "
                     "out of the file of --objects");
    }
}

TEST(RouteTableTest, takesARouteThatIsThereAlready) {
    const RouteTable table({alarm, alarm});
    EXPECT_EQ(ownerOf(table.ofDn("ManagedElement=1,Alarm=1")), "AlarmService");
}

}  // namespace

}  // namespace TevAgent
