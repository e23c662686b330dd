#include "Router.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "Diagnostics.h"
#include "FakeComponent.h"
#include "TempFolder.h"

namespace TevAgent {

namespace {

using testing::ElementsAre;

constexpr const char* parentDn = "ManagedElement=1,Equipment=1";
constexpr const char* routedDn = "ManagedElement=1,Equipment=1,Alarm=7";

/// A router over a small store, and a component that owns the class Alarm under Equipment.
class RouterTest : public testing::Test {
protected:
    RouterTest() {
        alarms.offer(alarms.resource.base);
        alarms.offer(alarms.objects.base);
        EXPECT_EQ(portal.registerComponent(&alarms.component), 0);
        alarms.whenCalled("join", [this] { return transactions.registerParticipant(tx, &alarms.resource); });
    }

    /// The keys of a listing, or those before the code that ended it: "code -1".
    std::vector<std::string> keysOf(void* listing) {
        std::vector<std::string> keys;
        TevReturnT code = objects.nextMo(listing, &key);
        while (code == 0 && key != nullptr) {
            keys.emplace_back(key);
            code = objects.nextMo(listing, &key);
        }
        if (code != 0) {
            keys.push_back("code " + std::to_string(code));
        }
        return keys;
    }

    TevTest::TempFolder folder;
    const ObjectStore store = ObjectStore::load(folder.write("objects.xml", R"(<managedObjects>
        <mo class="ManagedElement" id="1">
          <attribute name="userLabel" type="string"><value>north</value><value>sea</value></attribute>
          <attribute name="site" type="reference"><value>Site=4</value></attribute>
          <attribute name="unset" type="string"/>
          <attribute name="int8" type="int8"><value>-8</value></attribute>
          <attribute name="int16" type="int16"><value>-16</value></attribute>
          <attribute name="int32" type="int32"><value>-32</value></attribute>
          <attribute name="int64" type="int64"><value>-64</value></attribute>
          <attribute name="uint8" type="uint8"><value>8</value></attribute>
          <attribute name="uint16" type="uint16"><value>16</value></attribute>
          <attribute name="uint32" type="uint32"><value>32</value></attribute>
          <attribute name="uint64" type="uint64"><value>18446744073709551615</value></attribute>
          <attribute name="bool" type="bool"><value>true</value></attribute>
          <attribute name="enum" type="enum"><value>3</value></attribute>
          <attribute name="double" type="double"><value>0.5</value></attribute>
          <mo class="Equipment" id="1"/><mo class="Equipment" id="2"/><mo class="Equipment" id="0"/>
        </mo>
        <mo class="ManagedElement" id="2"/>
      </managedObjects>)"));
    std::vector<std::string> calls;
    TevTest::FakeComponent<> alarms{"AlarmService", calls};
    PortalService portal;
    TransactionService transactions;
    Router router{store, portal, transactions, {{"Alarm", {"ManagedElement", "Equipment"}, "AlarmService"}}};
    const DalOamSpiManagedObject_1& objects = *Router::table();
    const unsigned long tx = transactions.begin();
    DalMoAttributeValueContainer leftOver{};
    char leftOverText[1] = {};
    DalMoAttributeValueContainer* container = nullptr;
    void* iterator = nullptr;
    char* key = nullptr;
};

TEST_F(RouterTest, isOfferedAsVersion1) {
    EXPECT_STREQ(objects.base.componentName, "DalOamSpiCmRouterService");
    EXPECT_STREQ(objects.base.interfaceName, "DalOamSpiManagedObject");
    EXPECT_STREQ(objects.base.interfaceVersion, "1");
}

TEST_F(RouterTest, readsTextsOfTheStore) {
    ASSERT_EQ(objects.getMoAttribute(tx, "ManagedElement=1", "userLabel", &container), 0);
    EXPECT_EQ(container->type, DalMoTypeString);
    ASSERT_EQ(container->nrOfValues, 2U);
    EXPECT_STREQ(container->values[0].theString, "north");
    EXPECT_STREQ(container->values[1].theString, "sea");
    ASSERT_EQ(objects.getMoAttribute(tx, "ManagedElement=1", "site", &container), 0);
    EXPECT_EQ(container->type, DalMoTypeReference);
    EXPECT_STREQ(container->values[0].theString, "Site=4");
}

TEST_F(RouterTest, readsEveryScalarTypeOfTheStore) {
    const auto read = [this](const char* name, std::int32_t type) {
        EXPECT_EQ(objects.getMoAttribute(tx, "ManagedElement=1", name, &container), 0) << name;
        EXPECT_EQ(container->type, type) << name;
        EXPECT_EQ(container->nrOfValues, 1U) << name;
        return container->values[0];
    };
    EXPECT_EQ(read("int8", DalMoTypeInt8).theInt8, -8);
    EXPECT_EQ(read("int16", DalMoTypeInt16).theInt16, -16);
    EXPECT_EQ(read("int32", DalMoTypeInt32).theInt32, -32);
    EXPECT_EQ(read("int64", DalMoTypeInt64).theInt64, -64);
    EXPECT_EQ(read("uint8", DalMoTypeUint8).theUint8, 8);
    EXPECT_EQ(read("uint16", DalMoTypeUint16).theUint16, 16);
    EXPECT_EQ(read("uint32", DalMoTypeUint32).theUint32, 32U);
    EXPECT_EQ(read("uint64", DalMoTypeUint64).theUint64, 18446744073709551615U);
    EXPECT_TRUE(read("bool", DalMoTypeBool).theBool);
    EXPECT_EQ(read("enum", DalMoTypeEnum).theInt64, 3);
    EXPECT_EQ(read("double", DalMoTypeDouble).theDouble, 0.5);
}

TEST_F(RouterTest, anAttributeWithoutValuesHasNoCells) {
    ASSERT_EQ(objects.getMoAttribute(tx, "ManagedElement=1", "unset", &container), 0);
    EXPECT_EQ(container->nrOfValues, 0U);
    EXPECT_EQ(container->values, nullptr);
}

TEST_F(RouterTest, everyReadGivesACopyOfItsOwn) {
    ASSERT_EQ(objects.getMoAttribute(tx, "ManagedElement=1", "userLabel", &container), 0);
    container->values[0].theString[0] = 'X';
    DalMoAttributeValueContainer* again = nullptr;
    ASSERT_EQ(objects.getMoAttribute(tx, "ManagedElement=1", "userLabel", &again), 0);
    EXPECT_STREQ(again->values[0].theString, "north");
    EXPECT_STREQ(container->values[0].theString, "Xorth");
}

TEST_F(RouterTest, whatIsNotInTheStoreIsNotFound) {
    container = &leftOver;
    EXPECT_EQ(objects.getMoAttribute(tx, "ManagedElement=3", "userLabel", &container), -2);
    EXPECT_EQ(container, nullptr);
    EXPECT_EQ(objects.getMoAttribute(tx, "ManagedElement=1", "nothing", &container), -2);
    EXPECT_EQ(objects.getMoAttribute(tx, "", "userLabel", &container), -2);
    EXPECT_EQ(objects.getMoAttribute(tx, "no DN", "userLabel", &container), -2);
    iterator = this;
    EXPECT_EQ(objects.newMoIterator(tx, "ManagedElement=3", "Equipment", &iterator), -2);
    EXPECT_EQ(iterator, nullptr);
    EXPECT_EQ(objects.newMoIterator(tx, "ManagedElement=1", "Nothing", &iterator), -2);
}

TEST_F(RouterTest, listsInstancesOfTheStoreInTheFilesOrder) {
    ASSERT_EQ(objects.newMoIterator(tx, "ManagedElement=1", "Equipment", &iterator), 0);
    EXPECT_THAT(keysOf(iterator), ElementsAre("1", "2", "0"));
    EXPECT_EQ(objects.nextMo(iterator, &key), 0);
    EXPECT_EQ(key, nullptr);
}

TEST_F(RouterTest, listsTheRootUnderTheEmptyDn) {
    ASSERT_EQ(objects.newMoIterator(tx, "", "ManagedElement", &iterator), 0);
    EXPECT_THAT(keysOf(iterator), ElementsAre("1", "2"));
}

TEST_F(RouterTest, iteratorsAdvanceOnTheirOwn) {
    void* other = nullptr;
    ASSERT_EQ(objects.newMoIterator(tx, "ManagedElement=1", "Equipment", &iterator), 0);
    ASSERT_EQ(objects.newMoIterator(tx, "ManagedElement=1", "Equipment", &other), 0);
    EXPECT_NE(iterator, other);
    ASSERT_EQ(objects.nextMo(iterator, &key), 0);
    EXPECT_STREQ(key, "1");
    EXPECT_THAT(keysOf(other), ElementsAre("1", "2", "0"));
    EXPECT_THAT(keysOf(iterator), ElementsAre("2", "0"));
}

TEST_F(RouterTest, iteratorsEndWithTheirTransactionAndNoOther) {
    const unsigned long otherTx = transactions.begin();
    void* other = nullptr;
    ASSERT_EQ(objects.newMoIterator(tx, "", "ManagedElement", &iterator), 0);
    ASSERT_EQ(objects.newMoIterator(otherTx, "", "ManagedElement", &other), 0);
    ASSERT_EQ(transactions.commit(tx), 0);
    key = leftOverText;
    EXPECT_EQ(objects.nextMo(iterator, &key), -1);
    EXPECT_EQ(key, nullptr);
    EXPECT_THAT(keysOf(other), ElementsAre("1", "2"));
    // A new one does not bring the old handle back to life.
    void* next = nullptr;
    ASSERT_EQ(objects.newMoIterator(otherTx, "", "ManagedElement", &next), 0);
    EXPECT_EQ(objects.nextMo(iterator, &key), -1);
    transactions.abort(otherTx);
}

TEST_F(RouterTest, anUnknownIteratorFails) {
    EXPECT_EQ(objects.nextMo(nullptr, &key), -1);
    EXPECT_EQ(objects.nextMo(this, &key), -1);
    EXPECT_EQ(objects.nextMo(&alarms, &key), -1);
}

TEST_F(RouterTest, anUnknownTransactionIsNotFound) {
    EXPECT_EQ(objects.getMoAttribute(99, "ManagedElement=1", "userLabel", &container), -2);
    EXPECT_EQ(container, nullptr);
    EXPECT_EQ(objects.newMoIterator(99, "", "ManagedElement", &iterator), -2);
    EXPECT_EQ(iterator, nullptr);
    EXPECT_EQ(objects.getMoAttribute(99, routedDn, "severity", &container), -2);
    EXPECT_TRUE(calls.empty());
}

TEST_F(RouterTest, refusesNullArguments) {
    DalMoAttributeValueContainer value{};
    DalMoAttributeValueContainer* parameters[] = {nullptr};
    for (const char* dn : {"ManagedElement=1", routedDn}) {
        EXPECT_EQ(objects.getMoAttribute(tx, nullptr, "a", &container), -8);
        EXPECT_EQ(objects.getMoAttribute(tx, dn, nullptr, &container), -8);
        EXPECT_EQ(objects.getMoAttribute(tx, dn, "a", nullptr), -8);
        EXPECT_EQ(objects.newMoIterator(tx, nullptr, "Alarm", &iterator), -8);
        EXPECT_EQ(objects.newMoIterator(tx, dn, nullptr, &iterator), -8);
        EXPECT_EQ(objects.newMoIterator(tx, dn, "Alarm", nullptr), -8);
        EXPECT_EQ(objects.setMoAttribute(tx, nullptr, "a", &value), -8);
        EXPECT_EQ(objects.setMoAttribute(tx, dn, nullptr, &value), -8);
        EXPECT_EQ(objects.setMoAttribute(tx, dn, "a", nullptr), -8);
        EXPECT_EQ(objects.createMo(tx, nullptr, "Alarm", "id", &value), -8);
        EXPECT_EQ(objects.createMo(tx, dn, nullptr, "id", &value), -8);
        EXPECT_EQ(objects.createMo(tx, dn, "Alarm", nullptr, &value), -8);
        EXPECT_EQ(objects.createMo(tx, dn, "Alarm", "id", nullptr), -8);
        EXPECT_EQ(objects.deleteMo(tx, nullptr), -8);
        EXPECT_EQ(objects.action(tx, nullptr, "clear", parameters, &container), -8);
        EXPECT_EQ(objects.action(tx, dn, nullptr, parameters, &container), -8);
        EXPECT_EQ(objects.action(tx, dn, "clear", nullptr, &container), -8);
        EXPECT_EQ(objects.action(tx, dn, "clear", parameters, nullptr), -8);
    }
    EXPECT_EQ(objects.nextMo(this, nullptr), -8);
    EXPECT_TRUE(calls.empty());
}

TEST_F(RouterTest, theStoreIsReadOnly) {
    DalMoAttributeValueContainer value{};
    DalMoAttributeValueContainer* parameters[] = {nullptr};
    EXPECT_EQ(objects.setMoAttribute(tx, "ManagedElement=1", "userLabel", &value), -1);
    EXPECT_EQ(objects.setMoAttribute(tx, "ManagedElement=3", "userLabel", &value), -2);
    EXPECT_EQ(objects.createMo(tx, "ManagedElement=1", "Equipment", "id", &value), -1);
    EXPECT_EQ(objects.createMo(tx, "", "ManagedElement", "id", &value), -1);
    EXPECT_EQ(objects.createMo(tx, "ManagedElement=3", "Equipment", "id", &value), -2);
    EXPECT_EQ(objects.deleteMo(tx, "ManagedElement=1"), -1);
    EXPECT_EQ(objects.deleteMo(tx, "ManagedElement=3"), -2);
    EXPECT_EQ(objects.action(tx, "ManagedElement=1", "restart", parameters, &container), -1);
    EXPECT_EQ(objects.action(tx, "ManagedElement=3", "restart", parameters, &container), -2);
}

TEST_F(RouterTest, routesAReadToTheOwnerWhichJoinsBeforeItsFirstCall) {
    DalMoAttributeValueContainer value{};
    alarms.container = &value;
    EXPECT_EQ(objects.getMoAttribute(tx, routedDn, "severity", &container), 0);
    EXPECT_EQ(container, &value);
    EXPECT_EQ(objects.getMoAttribute(tx, routedDn, "text", &container), 0);
    EXPECT_THAT(calls, ElementsAre("AlarmService.join 1",
                                   "AlarmService.getMoAttribute 1 ManagedElement=1,Equipment=1,Alarm=7 severity",
                                   "AlarmService.getMoAttribute 1 ManagedElement=1,Equipment=1,Alarm=7 text"));
}

TEST_F(RouterTest, aJoinThatFailsFailsTheCallWithItsCode) {
    alarms.whenCalled("join", [] { return TevReturnT(2); });
    Diagnostics::Capture capture;
    EXPECT_EQ(objects.getMoAttribute(tx, routedDn, "severity", &container), 2);
    EXPECT_EQ(objects.newMoIterator(tx, parentDn, "Alarm", &iterator), 2);
    EXPECT_EQ(iterator, nullptr);
    EXPECT_EQ(objects.deleteMo(tx, routedDn), 2);
    EXPECT_THAT(calls, testing::Each("AlarmService.join 1"));
    EXPECT_FALSE(capture.takeOr("").empty());
}

TEST_F(RouterTest, routesAListingByItsClassName) {
    alarms.keys = {"7", "8"};
    ASSERT_EQ(objects.newMoIterator(tx, parentDn, "Alarm", &iterator), 0);
    EXPECT_THAT(keysOf(iterator), ElementsAre("7", "8"));
    EXPECT_EQ(calls.at(1), "AlarmService.newMoIterator 1 ManagedElement=1,Equipment=1 Alarm");
    // Another class under a routed instance is looked for in the store.
    EXPECT_EQ(objects.newMoIterator(tx, routedDn, "Equipment", &iterator), -2);
}

TEST_F(RouterTest, aRoutedIteratorIsTheRoutersOwnAndEndsWithItsTransaction) {
    alarms.keys = {"7"};
    ASSERT_EQ(objects.newMoIterator(tx, parentDn, "Alarm", &iterator), 0);
    EXPECT_NE(iterator, static_cast<void*>(&alarms));
    ASSERT_EQ(transactions.commit(tx), 0);
    calls.clear();
    EXPECT_EQ(objects.nextMo(iterator, &key), -1);
    EXPECT_TRUE(calls.empty());
}

TEST_F(RouterTest, routesChangesAndActions) {
    DalMoAttributeValueContainer value{};
    DalMoAttributeValueContainer* parameters[] = {nullptr};
    alarms.container = &value;
    alarms.whenCalled("deleteMo", [] { return TevReturnT(-13); });
    EXPECT_EQ(objects.setMoAttribute(tx, routedDn, "text", &value), 0);
    EXPECT_EQ(objects.createMo(tx, parentDn, "Alarm", "alarmId", &value), 0);
    EXPECT_EQ(objects.deleteMo(tx, routedDn), -13);
    EXPECT_EQ(objects.action(tx, routedDn, "clear", parameters, &container), 0);
    EXPECT_EQ(container, &value);
    EXPECT_THAT(calls, ElementsAre("AlarmService.join 1",
                                   "AlarmService.setMoAttribute 1 ManagedElement=1,Equipment=1,Alarm=7 text",
                                   "AlarmService.createMo 1 ManagedElement=1,Equipment=1 Alarm alarmId",
                                   "AlarmService.deleteMo 1 ManagedElement=1,Equipment=1,Alarm=7",
                                   "AlarmService.action 1 ManagedElement=1,Equipment=1,Alarm=7 clear"));
}

TEST_F(RouterTest, catchesWhatAnOwnerThrowsAndGoesOn) {
    alarms.whenCalled("getMoAttribute", []() -> TevReturnT { throw 42; });
    alarms.container = &leftOver;
    Diagnostics::Capture capture;
    EXPECT_EQ(objects.getMoAttribute(tx, routedDn, "severity", &container), -1);
    EXPECT_EQ(container, nullptr);
    EXPECT_EQ(capture.takeOr(""), "component AlarmService threw in getMoAttribute: an exception of type int");
    EXPECT_EQ(objects.getMoAttribute(tx, "ManagedElement=1", "userLabel", &container), 0);
}

TEST_F(RouterTest, givesNothingWhereAnOwnerFails) {
    alarms.keys = {"7"};
    alarms.container = &leftOver;
    DalMoAttributeValueContainer* parameters[] = {nullptr};
    ASSERT_EQ(objects.newMoIterator(tx, parentDn, "Alarm", &iterator), 0);
    for (const char* operation : {"nextMo", "action", "newMoIterator", "getMoAttribute"}) {
        alarms.whenCalled(operation, [] { return TevReturnT(-4); });
    }
    EXPECT_EQ(objects.nextMo(iterator, &key), -4);
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(objects.action(tx, routedDn, "clear", parameters, &container), -4);
    EXPECT_EQ(container, nullptr);
    EXPECT_EQ(objects.getMoAttribute(tx, routedDn, "severity", &container), -4);
    EXPECT_EQ(container, nullptr);
    EXPECT_EQ(objects.newMoIterator(tx, parentDn, "Alarm", &iterator), -4);
    EXPECT_EQ(iterator, nullptr);
}

TEST_F(RouterTest, aRoutedClassWithoutItsComponentIsNotFoundAndNamesIt) {
    ASSERT_EQ(portal.unregisterComponent(&alarms.component), 0);
    Diagnostics::Capture capture;
    EXPECT_EQ(objects.getMoAttribute(tx, routedDn, "severity", &container), -2);
    EXPECT_EQ(capture.takeOr(""),
              "class Alarm belongs to component AlarmService, which is not there or offers no managed objects; "
              "the option --component of tev-agent loads it");
}

TEST_F(RouterTest, servesSeveralThreadsAtOnce) {
    constexpr int threadCount = 4;
    constexpr int rounds = 200;
    std::atomic<int> correct{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                const unsigned long own = transactions.begin();
                DalMoAttributeValueContainer* label = nullptr;
                void* listing = nullptr;
                char* first = nullptr;
                const bool isRead = objects.getMoAttribute(own, "ManagedElement=1", "userLabel", &label) == 0 &&
                                    objects.newMoIterator(own, "ManagedElement=1", "Equipment", &listing) == 0 &&
                                    objects.nextMo(listing, &first) == 0;
                if (isRead && label->values[0].theString == std::string("north") && first == std::string("1") &&
                    transactions.commit(own) == 0) {
                    ++correct;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(correct, threadCount * rounds);
}

TEST_F(RouterTest, isTheOnlyOneOfTheProcess) {
    EXPECT_THROW(Router(store, portal, transactions, {}), std::logic_error);
}

}  // namespace

}  // namespace TevAgent
