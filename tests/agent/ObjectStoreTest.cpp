#include "ObjectStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ObjectsFile.h"
#include "TempFolder.h"
#include "TevException.h"

namespace TevAgent {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* nodeObjects = R"(<managedObjects>
  <mo class="ManagedElement" id="1">
    <mo class="Transport" id="b"/>
    <mo class="Transport" id="a">
      <attribute name="userLabel" type="string"><value>the second</value></attribute>
      <mo class="ServiceCategory" id="OamBulk">
        <attribute name="dscp" type="uint8"><value>10</value></attribute>
        <attribute name="names" type="string"><value>x</value><value>y</value></attribute>
        <attribute name="none" type="int32"/>
      </mo>
    </mo>
    <mo class="Transport" id="c"><mo class="ServiceCategory" id="Other"/></mo>
  </mo>
  <mo class="ManagedElement" id="2"/>
</managedObjects>)";

constexpr const char* bulk = "ManagedElement=1,Transport=a,ServiceCategory=OamBulk";

class ObjectStoreTest : public testing::Test {
protected:
    ObjectStore load(const std::string& text) const { return ObjectStore::load(folder.write("objects.xml", text)); }

    /// The text of what loading `path` throws.
    static std::string refusalOf(const std::string& path) {
        try {
            ObjectStore::load(path);
        } catch (const Tev::TevException& error) {
            EXPECT_EQ(error.getReturnCode(), TevReturnFailure);
            return error.what();
        }
        return "nothing was thrown";
    }

    const TevTest::TempFolder folder;
};

TEST_F(ObjectStoreTest, knowsItsObjectsByTheirDns) {
    const ObjectStore store = load(nodeObjects);
    for (const char* dn : {"ManagedElement=1", "ManagedElement=2", "ManagedElement=1,Transport=b", bulk}) {
        EXPECT_TRUE(store.exists(dn)) << dn;
    }
}

TEST_F(ObjectStoreTest, knowsNoOtherDn) {
    const ObjectStore store = load(nodeObjects);
    for (const char* dn : {"", "ManagedElement", "ManagedElement=", "ManagedElement=3", "managedElement=1",
                           "Transport=a", "ManagedElement=2,Transport=a", "ManagedElement=1,",
                           "ManagedElement=1, Transport=a", ",ManagedElement=1", "ManagedElement=1,,Transport=a",
                           "ManagedElement=1=1", "ManagedElement=1,Transport=a,ServiceCategory=Other"}) {
        EXPECT_FALSE(store.exists(dn)) << dn;
    }
}

TEST_F(ObjectStoreTest, tellsWhatStandsUnderAnObjectAndWhichAttributesItHas) {
    const ObjectStore store = load(nodeObjects);
    EXPECT_THAT(store.children(""), ElementsAre("ManagedElement=1", "ManagedElement=2"));
    EXPECT_THAT(store.children("ManagedElement=1"), ElementsAre("Transport=b", "Transport=a", "Transport=c"));
    EXPECT_THAT(store.children(bulk), IsEmpty());
    EXPECT_THAT(store.children("no DN"), IsEmpty());
    EXPECT_THAT(store.attributeNames(bulk), ElementsAre("dscp", "names", "none"));
    EXPECT_THAT(store.attributeNames("ManagedElement=9"), IsEmpty());
}

TEST_F(ObjectStoreTest, listsKeysInTheFilesOrder) {
    const ObjectStore store = load(nodeObjects);
    EXPECT_THAT(store.keys("ManagedElement=1", "Transport"), ElementsAre("b", "a", "c"));
}

TEST_F(ObjectStoreTest, listsTheRootsChildrenUnderAnEmptyDn) {
    const ObjectStore store = load(nodeObjects);
    EXPECT_THAT(store.keys("", "ManagedElement"), ElementsAre("1", "2"));
    EXPECT_TRUE(store.hasClass("", "ManagedElement"));
    EXPECT_FALSE(store.hasClass("", "Transport"));
}

TEST_F(ObjectStoreTest, listsNothingUnderAnUnknownParentOrClass) {
    const ObjectStore store = load(nodeObjects);
    EXPECT_THAT(store.keys("ManagedElement=1", "Equipment"), IsEmpty());
    EXPECT_THAT(store.keys("ManagedElement=9", "Transport"), IsEmpty());
    EXPECT_THAT(store.keys("no DN", "Transport"), IsEmpty());
    EXPECT_FALSE(store.hasClass("ManagedElement=1", "Equipment"));
    EXPECT_FALSE(store.hasClass("ManagedElement=9", "Transport"));
}

TEST_F(ObjectStoreTest, givesAttributesWithTheirValues) {
    const ObjectStore store = load(nodeObjects);
    const ObjectAttribute* dscp = store.attribute(bulk, "dscp");
    ASSERT_NE(dscp, nullptr);
    EXPECT_EQ(dscp->type, DalMoTypeUint8);
    ASSERT_EQ(dscp->values.size(), 1U);
    EXPECT_EQ(dscp->values[0].theUint8, 10);
    const ObjectAttribute* names = store.attribute(bulk, "names");
    ASSERT_NE(names, nullptr);
    EXPECT_EQ(names->type, DalMoTypeString);
    ASSERT_EQ(names->values.size(), 2U);
    EXPECT_STREQ(names->values[0].theString, "x");
    EXPECT_STREQ(names->values[1].theString, "y");
}

TEST_F(ObjectStoreTest, tellsAnAttributeWithoutValuesFromNone) {
    const ObjectStore store = load(nodeObjects);
    const ObjectAttribute* none = store.attribute(bulk, "none");
    ASSERT_NE(none, nullptr);
    EXPECT_EQ(none->type, DalMoTypeInt32);
    EXPECT_THAT(none->values, IsEmpty());
    EXPECT_EQ(store.attribute(bulk, "None"), nullptr);
    EXPECT_EQ(store.attribute("ManagedElement=1", "dscp"), nullptr);
    EXPECT_EQ(store.attribute("ManagedElement=9", "dscp"), nullptr);
    EXPECT_EQ(store.attribute("", "dscp"), nullptr);
}

TEST_F(ObjectStoreTest, findsTheFirstInstanceDepthFirst) {
    const ObjectStore store = load(nodeObjects);
    EXPECT_EQ(store.firstInstance({"ManagedElement"}), "ManagedElement=1");
    EXPECT_EQ(store.firstInstance({"ManagedElement", "Transport"}), "ManagedElement=1,Transport=b");
}

TEST_F(ObjectStoreTest, passesOverAnInstanceWithoutTheNextClass) {
    EXPECT_EQ(load(nodeObjects).firstInstance({"ManagedElement", "Transport", "ServiceCategory"}), bulk);
}

TEST_F(ObjectStoreTest, findsNoFirstInstanceOfAnUnknownPath) {
    const ObjectStore store = load(nodeObjects);
    EXPECT_EQ(store.firstInstance({}), std::nullopt);
    EXPECT_EQ(store.firstInstance({"Transport"}), std::nullopt);
    EXPECT_EQ(store.firstInstance({"ManagedElement", "ServiceCategory"}), std::nullopt);
}

TEST_F(ObjectStoreTest, givesTheFilesRoutesInOrder) {
    const ObjectStore store = load(R"(<managedObjects>
  <route class="Alarm" parent="ManagedElement,FaultManagement" component="AlarmService"/>
  <mo class="ManagedElement" id="1"/>
  <route class="Rack" parent="" component="RackService"/>
</managedObjects>)");
    ASSERT_EQ(store.routes().size(), 2U);
    EXPECT_EQ(store.routes()[0].className, "Alarm");
    EXPECT_THAT(store.routes()[0].parent, ElementsAre("ManagedElement", "FaultManagement"));
    EXPECT_EQ(store.routes()[0].component, "AlarmService");
    EXPECT_EQ(store.routes()[1].className, "Rack");
    EXPECT_THAT(store.routes()[1].parent, IsEmpty());
    EXPECT_TRUE(store.exists("ManagedElement=1"));
}

TEST_F(ObjectStoreTest, withoutAFileIsEmpty) {
    const ObjectStore store;
    EXPECT_FALSE(store.exists("ManagedElement=1"));
    EXPECT_THAT(store.keys("", "ManagedElement"), IsEmpty());
    EXPECT_THAT(store.routes(), IsEmpty());
    EXPECT_EQ(store.firstInstance({"ManagedElement"}), std::nullopt);
}

TEST_F(ObjectStoreTest, keepsItsAttributesWhereTheyAreWhenItMoves) {
    ObjectStore store = load(nodeObjects);
    const ObjectAttribute* names = store.attribute(bulk, "names");
    const ObjectStore moved = std::move(store);
    EXPECT_EQ(moved.attribute(bulk, "names"), names);
    EXPECT_STREQ(names->values[1].theString, "y");
}

TEST_F(ObjectStoreTest, servesManyThreadsAtOnce) {
    const ObjectStore store = load(nodeObjects);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&store] {
            for (int round = 0; round < 200; ++round) {
                EXPECT_EQ(store.firstInstance({"ManagedElement", "Transport", "ServiceCategory"}), bulk);
                EXPECT_EQ(store.attribute(bulk, "dscp")->values[0].theUint8, 10);
                EXPECT_EQ(store.keys("ManagedElement=1", "Transport").size(), 3U);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST_F(ObjectStoreTest, holdsTenThousandObjects) {
    constexpr int count = 10000;
    std::string text = "<managedObjects><mo class=\"Root\" id=\"1\">\n";
    for (int i = 0; i < count; ++i) {
        text += "<mo class=\"Leaf\" id=\"" + std::to_string(i) +
                "\"><attribute name=\"number\" type=\"int32\"><value>" + std::to_string(i) +
                "</value></attribute></mo>\n";
    }
    const ObjectStore store = load(text + "</mo></managedObjects>");
    EXPECT_EQ(store.keys("Root=1", "Leaf").size(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const ObjectAttribute* number = store.attribute("Root=1,Leaf=" + std::to_string(i), "number");
        ASSERT_NE(number, nullptr);
        EXPECT_EQ(number->values[0].theInt32, i);
    }
}

TEST_F(ObjectStoreTest, namesFileLineAndReasonOfABadFile) {
    const std::string path = folder.write("objects.xml", "<managedObjects>\n<mo class=\"A\"/>\n</managedObjects>");
    EXPECT_EQ(refusalOf(path), path + ":2: <mo> has no id");
}

TEST_F(ObjectStoreTest, refusesWhatIsNoReadableFile) {
    const std::string none = (folder.path() / "none.xml").string();
    EXPECT_EQ(refusalOf(none), none + ": cannot be opened: No such file or directory");
    const std::string dangling = (folder.path() / "link.xml").string();
    std::filesystem::create_symlink("nowhere", dangling);
    EXPECT_EQ(refusalOf(dangling), dangling + ": a link to a file that does not exist");
    EXPECT_EQ(refusalOf(folder.path().string()), folder.path().string() + ": a folder, not a file");
    EXPECT_EQ(refusalOf("/dev/null"), "/dev/null: not a regular file");
    const std::string empty = folder.write("empty.xml", "");
    EXPECT_EQ(refusalOf(empty), empty + ": the file is empty");
}

TEST_F(ObjectStoreTest, acceptsAFileOfExactlyTheLimit) {
    std::string text = "<managedObjects><!--";
    const std::string end = "--></managedObjects>";
    text.append(ObjectsFile::maxBytes - text.size() - end.size(), 'x');
    EXPECT_FALSE(load(text + end).exists("ManagedElement=1"));
}

TEST_F(ObjectStoreTest, refusesAFileOverTheLimit) {
    const std::string path = folder.write("objects.xml", "<managedObjects>");
    std::filesystem::resize_file(path, ObjectsFile::maxBytes + 1);
    EXPECT_EQ(refusalOf(path), path + ": the file is larger than 67108864 bytes");
}

}  // namespace
}  // namespace TevAgent
