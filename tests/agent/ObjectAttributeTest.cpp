#include "ObjectAttribute.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace TevAgent {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

/// An attribute of the type called `typeName` with the values that `texts` tell.
ObjectAttribute attribute(const std::string& typeName, const std::vector<std::string>& texts) {
    ObjectAttribute made;
    made.type = ObjectAttribute::typeNamed(typeName);
    for (const std::string& text : texts) {
        made.append(text);
    }
    return made;
}

/// Why `text` is no value of the type called `typeName`.
std::string refusalOf(const std::string& typeName, const std::string& text) {
    ObjectAttribute target = attribute(typeName, {});
    try {
        target.append(text);
    } catch (const std::invalid_argument& error) {
        EXPECT_THAT(target.values, SizeIs(0));
        return error.what();
    }
    return "accepted";
}

/// Expects that an integer type takes all from the text `lowest` to the text `highest`, and neither `below` nor
/// `above`, and keeps the values in `member`.
template <class Number>
void expectRange(const std::string& typeName, Number DalMoAttributeValue::*member, const std::string& below,
                 const std::string& above) {
    const std::string lowest = std::to_string(std::numeric_limits<Number>::min());
    const std::string highest = std::to_string(std::numeric_limits<Number>::max());
    const ObjectAttribute extremes = attribute(typeName, {lowest, highest, "0", " 7\n"});
    ASSERT_THAT(extremes.values, SizeIs(4));
    EXPECT_EQ(extremes.values[0].*member, std::numeric_limits<Number>::min());
    EXPECT_EQ(extremes.values[1].*member, std::numeric_limits<Number>::max());
    EXPECT_EQ(extremes.values[2].*member, 0);
    EXPECT_EQ(extremes.values[3].*member, 7);
    EXPECT_EQ(refusalOf(typeName, above), '"' + above + "\" is out of the range of type " + typeName);
    EXPECT_THAT(refusalOf(typeName, below), HasSubstr(" of type " + typeName));
    for (const char* text : {"", " ", "x", "1x", "1.5", "1 2", "0x10", "1e3", "--1", "true"}) {
        EXPECT_EQ(refusalOf(typeName, text), '"' + std::string(text) + "\" is no value of type " + typeName);
    }
}

TEST(ObjectAttributeTest, knowsEveryTypeByItsName) {
    const std::vector<std::pair<std::string, std::int32_t>> expected = {
        {"int8", 1},   {"int16", 2},  {"int32", 3}, {"int64", 4},      {"uint8", 5}, {"uint16", 6}, {"uint32", 7},
        {"uint64", 8}, {"string", 9}, {"bool", 10}, {"reference", 11}, {"enum", 12}, {"double", 14}};
    for (const auto& [name, code] : expected) {
        EXPECT_EQ(ObjectAttribute::typeNamed(name), code) << name;
    }
}

TEST(ObjectAttributeTest, knowsNoOtherType) {
    for (const char* name : {"", "int", "Int8", "uint7", "struct", "void", "9", "string "}) {
        EXPECT_EQ(ObjectAttribute::typeNamed(name), 0) << name;
    }
}

TEST(ObjectAttributeTest, holdsInt8ToItsLimits) {
    expectRange("int8", &DalMoAttributeValue::theInt8, "-129", "128");
}

TEST(ObjectAttributeTest, holdsInt16ToItsLimits) {
    expectRange("int16", &DalMoAttributeValue::theInt16, "-32769", "32768");
}

TEST(ObjectAttributeTest, holdsInt32ToItsLimits) {
    expectRange("int32", &DalMoAttributeValue::theInt32, "-2147483649", "2147483648");
}

TEST(ObjectAttributeTest, holdsInt64ToItsLimits) {
    expectRange("int64", &DalMoAttributeValue::theInt64, "-9223372036854775809", "9223372036854775808");
}

TEST(ObjectAttributeTest, holdsUint8ToItsLimits) {
    expectRange("uint8", &DalMoAttributeValue::theUint8, "-1", "256");
}

TEST(ObjectAttributeTest, holdsUint16ToItsLimits) {
    expectRange("uint16", &DalMoAttributeValue::theUint16, "-1", "65536");
}

TEST(ObjectAttributeTest, holdsUint32ToItsLimits) {
    expectRange("uint32", &DalMoAttributeValue::theUint32, "-1", "4294967296");
}

TEST(ObjectAttributeTest, holdsUint64ToItsLimits) {
    expectRange("uint64", &DalMoAttributeValue::theUint64, "-1", "18446744073709551616");
}

TEST(ObjectAttributeTest, holdsEnumsAsSigned64Bit) {
    expectRange("enum", &DalMoAttributeValue::theInt64, "-9223372036854775809", "9223372036854775808");
}

TEST(ObjectAttributeTest, holdsBools) {
    const ObjectAttribute made = attribute("bool", {"true", " false\n"});
    EXPECT_TRUE(made.values[0].theBool);
    EXPECT_FALSE(made.values[1].theBool);
    for (const char* text : {"", "True", "1", "yes", "truefalse"}) {
        EXPECT_THAT(refusalOf("bool", text), HasSubstr("is neither \"true\" nor \"false\"")) << text;
    }
}

TEST(ObjectAttributeTest, holdsDoubles) {
    const ObjectAttribute made = attribute("double", {"41.5", "-1e-3", " 7 ", "1.7976931348623157e308", "-0"});
    EXPECT_EQ(made.values[0].theDouble, 41.5);
    EXPECT_EQ(made.values[1].theDouble, -0.001);
    EXPECT_EQ(made.values[2].theDouble, 7.0);
    EXPECT_EQ(made.values[3].theDouble, std::numeric_limits<double>::max());
    EXPECT_EQ(made.values[4].theDouble, 0.0);
}

TEST(ObjectAttributeTest, refusesDoublesThatAreNoFiniteNumber) {
    EXPECT_EQ(refusalOf("double", "1e400"), "\"1e400\" is out of the range of type double");
    EXPECT_EQ(refusalOf("double", "-1e400"), "\"-1e400\" is out of the range of type double");
    EXPECT_EQ(refusalOf("double", "inf"), "\"inf\" is not a finite value of type double");
    EXPECT_EQ(refusalOf("double", "nan"), "\"nan\" is not a finite value of type double");
    for (const char* text : {"", "1,5", "1.5.", "0x1p3", "one"}) {
        EXPECT_EQ(refusalOf("double", text), '"' + std::string(text) + "\" is no value of type double");
    }
}

TEST(ObjectAttributeTest, keepsStringsAsTheyStand) {
    const ObjectAttribute made = attribute("string", {"aes128-ctr", "", "  two\nlines ", "gr\xc3\xbcn"});
    EXPECT_STREQ(made.values[0].theString, "aes128-ctr");
    EXPECT_STREQ(made.values[1].theString, "");
    EXPECT_STREQ(made.values[2].theString, "  two\nlines ");
    EXPECT_STREQ(made.values[3].theString, "gr\xc3\xbcn");
}

TEST(ObjectAttributeTest, holdsReferencesToWhateverIsADn) {
    const ObjectAttribute made = attribute("reference", {"ManagedElement=1,Transport=1"});
    EXPECT_EQ(made.type, DalMoTypeReference);
    EXPECT_STREQ(made.values[0].theString, "ManagedElement=1,Transport=1");
    for (const char* text :
         {"", "ManagedElement", "ManagedElement=", "=1", "A=1,", ",A=1", "A=1,,B=1", "A=1=2", "A=1\n"}) {
        EXPECT_THAT(refusalOf("reference", text), HasSubstr("is not a DN")) << text;
    }
}

TEST(ObjectAttributeTest, keepsItsTextsWhenItMoves) {
    ObjectAttribute before = attribute("string", {"a", "b"});
    const ObjectAttribute after = std::move(before);
    EXPECT_STREQ(after.values[0].theString, "a");
    EXPECT_STREQ(after.values[1].theString, "b");
}

TEST(ObjectAttributeTest, putsAValueAtTheFirstByteOfAClearedCell) {
    const ObjectAttribute made = attribute("uint8", {"10"});
    unsigned char bytes[sizeof(DalMoAttributeValue)];
    std::memcpy(bytes, &made.values[0], sizeof bytes);
    EXPECT_THAT(bytes, testing::ElementsAre(10, 0, 0, 0, 0, 0, 0, 0));
}

TEST(ObjectAttributeTest, shortensWhatItQuotes) {
    EXPECT_LE(refusalOf("uint8", std::string(100000, '9')).size(), 150U);
}

}  // namespace
}  // namespace TevAgent
