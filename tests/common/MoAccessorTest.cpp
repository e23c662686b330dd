#include "MoAccessor.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "LogCapture.h"
#include "Portal.h"

namespace TevTest {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* sourceFile = "src/common/src/MoAccessor";
constexpr const char* dn = "ManagedElement=1";
constexpr const char* path = "ManagedElement,SystemFunctions,SecM";

/// The code and the text of the exception that `action` throws.
template <class Action>
std::string failureOf(Action action) {
    try {
        action();
    } catch (const Tev::TevException& e) {
        return std::to_string(e.getReturnCode()) + " " + e.what();
    }
    return "none";
}

/// An accessor in transaction 7, in a framework of fakes.
class MoAccessorTest : public testing::Test {
protected:
    MoAccessorTest() {
        Tev::Portal::setAccessor(host.accessor());
        accessor.useTransaction(7);
    }
    ~MoAccessorTest() override { Tev::Portal::setAccessor(nullptr); }

    /// Gives the object the attribute "attr" with these cells.
    void set(std::int32_t type, const std::vector<DalMoAttributeValue>& values) {
        cells = values;
        host.setAttribute(dn, "attr", {type, static_cast<std::uint32_t>(cells.size()), cells.data()});
    }

    /// A cell that holds `value` in `member`, and other bits wherever the value does not lie.
    template <class T>
    static DalMoAttributeValue cell(T DalMoAttributeValue::*member, T value) {
        DalMoAttributeValue filled;
        filled.theUint64 = 0xA5A5A5A5A5A5A5A5;
        filled.*member = value;
        return filled;
    }

    /// Reads values of one type alone and in a sequence; checks that no other type is read as it.
    template <class T, class Member>
    void expectReads(std::int32_t type, Member DalMoAttributeValue::*member, const std::vector<T>& values) {
        SCOPED_TRACE(type);
        std::vector<DalMoAttributeValue> all;
        for (const T& value : values) {
            all.push_back(cell(member, static_cast<Member>(value)));
            set(type, {all.back()});
            EXPECT_EQ(accessor.getAttr<T>(dn, "attr"), value);
        }
        set(type, all);
        EXPECT_EQ(accessor.getSeqAttr<T>(dn, "attr"), values);
        for (std::int32_t other = 0; other <= 16; ++other) {
            set(other, {all.back()});
            const bool isTaken = other == type || (type == DalMoTypeInt64 && other == DalMoTypeEnum);
            const std::string refusal = "-1 Attribute has values of type " + std::to_string(other) + ", not " +
                                        std::to_string(type) + ": ManagedElement=1::attr";
            EXPECT_EQ(failureOf([&] { accessor.getAttr<T>(dn, "attr"); }), isTaken ? "none" : refusal);
            EXPECT_EQ(failureOf([&] { accessor.getSeqAttr<T>(dn, "attr"); }), isTaken ? "none" : refusal);
        }
    }

    template <class T>
    void expectReadsWhole(std::int32_t type, T DalMoAttributeValue::*member) {
        expectReads<T>(type, member, {std::numeric_limits<T>::min(), T(0), T(1), std::numeric_limits<T>::max()});
    }

    std::string first(const std::string& classPath) {
        std::string found = "left over";
        accessor.getFirstMoInstance(classPath, found);
        return found;
    }

    /// What getFirstMoInstance fails with; it leaves the DN empty.
    std::string failureOfFirst(const std::string& classPath) {
        std::string found = "left over";
        std::string failure = failureOf([&] { accessor.getFirstMoInstance(classPath, found); });
        EXPECT_EQ(found, "");
        return failure;
    }

    FakeHost host;
    std::vector<DalMoAttributeValue> cells;
    Tev::MoAccessor accessor{true, 1, 60};
};

// Attributes of one value.

TEST_F(MoAccessorTest, readsWholeNumbersOfEveryWidth) {
    expectReadsWhole(DalMoTypeInt8, &DalMoAttributeValue::theInt8);
    expectReadsWhole(DalMoTypeInt16, &DalMoAttributeValue::theInt16);
    expectReadsWhole(DalMoTypeInt32, &DalMoAttributeValue::theInt32);
    expectReadsWhole(DalMoTypeInt64, &DalMoAttributeValue::theInt64);
    expectReadsWhole(DalMoTypeUint8, &DalMoAttributeValue::theUint8);
    expectReadsWhole(DalMoTypeUint16, &DalMoAttributeValue::theUint16);
    expectReadsWhole(DalMoTypeUint32, &DalMoAttributeValue::theUint32);
    expectReadsWhole(DalMoTypeUint64, &DalMoAttributeValue::theUint64);
}

TEST_F(MoAccessorTest, readsNumbersOfTheLanguagesOwnNames) {
    expectReads<unsigned char>(DalMoTypeUint8, &DalMoAttributeValue::theUint8, {0, 46, 255});
    expectReads<long long>(DalMoTypeInt64, &DalMoAttributeValue::theInt64, {-1, 1});
    constexpr bool isLongWide = sizeof(long) == sizeof(std::int64_t);
    EXPECT_EQ(Tev::MoAccessor::getSpiType<long>(), isLongWide ? DalMoTypeInt64 : DalMoTypeInt32);
}

TEST_F(MoAccessorTest, readsTruthValues) {
    expectReads<bool>(DalMoTypeBool, &DalMoAttributeValue::theBool, {false, true});
}

TEST_F(MoAccessorTest, readsDoubles) {
    expectReads<double>(DalMoTypeDouble, &DalMoAttributeValue::theDouble, {-0.5, 0.0, 1e300});
}

TEST_F(MoAccessorTest, readsStrings) {
    host.setTexts(dn, "attr", {"a%s b"});
    EXPECT_EQ(accessor.getAttr<std::string>(dn, "attr"), "a%s b");
    host.setTexts(dn, "attr", {""});
    EXPECT_EQ(accessor.getAttr<std::string>(dn, "attr"), "");
}

TEST_F(MoAccessorTest, readsReferencesAsStringsAndNothingElse) {
    char text[] = "Site=4";
    for (std::int32_t type = 0; type <= 16; ++type) {
        set(type, {cell<char*>(&DalMoAttributeValue::theString, text)});
        if (type == DalMoTypeString || type == DalMoTypeReference) {
            EXPECT_EQ(accessor.getAttr<std::string>(dn, "attr"), "Site=4");
        } else {
            EXPECT_EQ(failureOf([&] { accessor.getAttr<std::string>(dn, "attr"); }),
                      "-1 Attribute has values of type " + std::to_string(type) + ", not 9: ManagedElement=1::attr");
        }
    }
}

TEST_F(MoAccessorTest, refusesANullString) {
    set(DalMoTypeString, {cell<char*>(&DalMoAttributeValue::theString, nullptr)});
    EXPECT_EQ(failureOf([&] { accessor.getAttr<std::string>(dn, "attr"); }), "-1 A string value is null");
    EXPECT_EQ(failureOf([&] { accessor.getSeqAttr<std::string>(dn, "attr"); }), "-1 A string value is null");
}

TEST_F(MoAccessorTest, attributeWithoutAValueIsAFailureThatIsNotLogged) {
    const std::string refusal = "-1 Attribute has no value set: ManagedElement=1::attr";
    const LogCapture log(7);
    DalMoAttributeValue unused{};
    host.setAttribute(dn, "attr", {DalMoTypeUint8, 0, &unused});
    EXPECT_EQ(failureOf([&] { accessor.getAttr<unsigned char>(dn, "attr"); }), refusal);
    for (const std::uint32_t count : {0U, 1U, 2U}) {
        host.setAttribute(dn, "attr", {DalMoTypeUint8, count, nullptr});
        EXPECT_EQ(failureOf([&] { accessor.getAttr<unsigned char>(dn, "attr"); }), refusal);
    }
    host.leaveOutput("router.getMoAttribute");
    EXPECT_EQ(failureOf([&] { accessor.getAttr<unsigned char>(dn, "attr"); }), refusal);
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(MoAccessorTest, typeOfAnAttributeWithoutAValueDoesNotMatter) {
    set(DalMoTypeStruct, {});
    EXPECT_EQ(failureOf([&] { accessor.getAttr<int>(dn, "attr"); }),
              "-1 Attribute has no value set: ManagedElement=1::attr");
    EXPECT_THAT(accessor.getSeqAttr<int>(dn, "attr"), IsEmpty());
}

TEST_F(MoAccessorTest, attributeOfSeveralValuesIsAFailureLoggedFromLevelThree) {
    host.setTexts(dn, "attr", {"1", "2"});  // the type is not looked at
    const std::string text = "Attribute is a sequence: ManagedElement=1::attr";
    const auto expectRecordsAt = [&](int level, const Records& records) {
        const LogCapture log(level);
        EXPECT_EQ(failureOf([&] { accessor.getAttr<unsigned char>(dn, "attr"); }), "-1 " + text);
        EXPECT_THAT(log.records(), ElementsAreArray(records));
    };
    expectRecordsAt(2, {});
    expectRecordsAt(3, message(3, sourceFile, "getAttr", text));
}

TEST_F(MoAccessorTest, getAttrTracesItsEntry) {
    host.setTexts(dn, "attr", {"text"});
    {
        const LogCapture log;
        accessor.getAttr<std::string>(dn, "attr");
        EXPECT_THAT(log.records(), ElementsAreArray(debugTrace(0, sourceFile, "getAttr",
                                                               "MoAccessor::getAttr<> dName :ManagedElement=1 "
                                                               "attrName :attr",
                                                               "Common")));
    }
    const LogCapture below(7);
    accessor.getAttr<std::string>(dn, "attr");
    EXPECT_THAT(below.records(), IsEmpty());
}

// Attributes of many values.

TEST_F(MoAccessorTest, readsSequencesInTheirOrder) {
    host.setTexts(dn, "attr", {"b", "", "a", "b"});
    const LogCapture log;
    EXPECT_THAT(accessor.getSeqAttr<std::string>(dn, "attr"), ElementsAre("b", "", "a", "b"));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(MoAccessorTest, sequenceWithoutValuesIsEmpty) {
    set(DalMoTypeString, {});
    EXPECT_THAT(accessor.getSeqAttr<std::string>(dn, "attr"), IsEmpty());
    host.setAttribute(dn, "attr", {DalMoTypeString, 2, nullptr});
    EXPECT_THAT(accessor.getSeqAttr<std::string>(dn, "attr"), IsEmpty());
    host.leaveOutput("router.getMoAttribute");
    EXPECT_THAT(accessor.getSeqAttr<std::string>(dn, "attr"), IsEmpty());
}

// The router.

TEST_F(MoAccessorTest, readsInTheTransactionThatIsInUse) {
    host.objects = {dn};
    host.setTexts(dn, "attr", {"text"});
    Tev::Transaction& transaction = accessor;
    transaction.useTransaction(4294967295UL);
    accessor.getAttr<std::string>(dn, "attr");
    accessor.getSeqAttr<std::string>(dn, "attr");
    EXPECT_EQ(first("ManagedElement"), dn);
    const std::string fetch = "getInterface DalOamSpiCmRouterService,DalOamSpiManagedObject,1";
    const std::string read = "router.getMoAttribute 4294967295,ManagedElement=1,attr";
    EXPECT_THAT(host.calls(), ElementsAre("getPortal 3", fetch, read, "getPortal 3", fetch, read, "getPortal 3", fetch,
                                          "router.newMoIterator 4294967295,,ManagedElement", "router.nextMo"));
}

TEST_F(MoAccessorTest, doesNothingBeforeItIsAsked) {
    { const Tev::MoAccessor unused(true, 1, 60); }
    {
        Tev::MoAccessor bound(false, 0, 0);
        bound.useTransaction(5);
    }
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(MoAccessorTest, handsOnTheRoutersRefusalOfAnAttribute) {
    for (const TevReturnT code : {-1, -2, -8, 2}) {
        const std::string refusal =
            std::to_string(code) + " getMoAttribute failed for ManagedElement=1::attr: " + std::to_string(code);
        host.failCall("router.getMoAttribute", code);
        EXPECT_EQ(failureOf([&] { accessor.getAttr<int>(dn, "attr"); }), refusal);
        host.failCall("router.getMoAttribute", code);
        EXPECT_EQ(failureOf([&] { accessor.getSeqAttr<int>(dn, "attr"); }), refusal);
    }
}

TEST_F(MoAccessorTest, missingRouterIsAFailure) {
    const std::string refusal = "-2 getInterface failed for DalOamSpiManagedObject: -2";
    host.withdraw("DalOamSpiManagedObject");
    EXPECT_EQ(failureOf([&] { accessor.getAttr<int>(dn, "attr"); }), refusal);
    EXPECT_EQ(failureOf([&] { accessor.getSeqAttr<int>(dn, "attr"); }), refusal);
    EXPECT_EQ(failureOfFirst(path), refusal);
    Tev::Portal::setAccessor(nullptr);
    EXPECT_EQ(failureOfFirst(path), "-1 getInterface failed for DalOamSpiManagedObject: -1");
}

// The first instance of a class.

TEST_F(MoAccessorTest, findsTheFirstInstance) {
    host.objects = {"ManagedElement=b",
                    "ManagedElement=a",
                    "ManagedElement=b,SystemFunctions=2",
                    "ManagedElement=b,SystemFunctions=1",
                    "ManagedElement=b,SystemFunctions=2,SecM=9",
                    "ManagedElement=b,SystemFunctions=2,SecM=8"};
    EXPECT_EQ(first("ManagedElement"), "ManagedElement=b");
    EXPECT_EQ(first(path), "ManagedElement=b,SystemFunctions=2,SecM=9");
}

TEST_F(MoAccessorTest, passesOverInstancesWithoutTheNextClass) {
    host.objects = {"ManagedElement=1",
                    "ManagedElement=2",
                    "ManagedElement=3",
                    "ManagedElement=2,SystemFunctions=1",
                    "ManagedElement=3,SystemFunctions=1",
                    "ManagedElement=3,SystemFunctions=2",
                    "ManagedElement=3,SystemFunctions=2,SecM=1"};
    EXPECT_EQ(first(path), "ManagedElement=3,SystemFunctions=2,SecM=1");
}

TEST_F(MoAccessorTest, findsNoInstanceOfWhatIsNotThere) {
    EXPECT_EQ(first(path), "");
    host.objects = {"ManagedElement=1", "ManagedElement=1,SystemFunctions=1"};
    EXPECT_EQ(first(path), "");
    host.leaveOutput("router.nextMo");  // a listing that is empty
    EXPECT_EQ(first("ManagedElement"), "");
    host.failCall("router.nextMo", -2);
    EXPECT_EQ(first("ManagedElement"), "");
    EXPECT_EQ(first(""), "");
}

TEST_F(MoAccessorTest, otherCodesOfTheRouterAreFailures) {
    host.objects = {"ManagedElement=1", "ManagedElement=1,SystemFunctions=1"};
    for (const TevReturnT code : {-1, -8, 2}) {
        const std::string shown = std::to_string(code);
        host.failCall("router.newMoIterator", code);
        EXPECT_EQ(failureOfFirst(path), shown + " newMoIterator failed for ManagedElement: " + shown);
        host.failCall("router.newMoIterator", code, 2);
        EXPECT_EQ(failureOfFirst(path), shown + " newMoIterator failed for ManagedElement=1,SystemFunctions: " + shown);
        host.failCall("router.nextMo", code, 2);
        EXPECT_EQ(failureOfFirst(path), shown + " nextMo failed for ManagedElement=1,SystemFunctions: " + shown);
    }
}

}  // namespace

}  // namespace TevTest
