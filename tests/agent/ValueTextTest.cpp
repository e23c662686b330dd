#include "ValueText.h"

#include <gmock/gmock.h>

#include <limits>
#include <stdexcept>

namespace TevAgent {

namespace {

using testing::ElementsAre;

std::vector<std::string> textsOf(std::int32_t type, std::vector<DalMoAttributeValue> values) {
    const DalMoAttributeValueContainer container = {type, static_cast<std::uint32_t>(values.size()), values.data()};
    return ValueText::of(&container);
}

template <class Member, class Number>
DalMoAttributeValue cell(Member member, Number number) {
    DalMoAttributeValue value{};
    value.*member = number;
    return value;
}

std::string faultOf(const DalMoAttributeValueContainer* container) {
    try {
        ValueText::of(container);
        return "";
    } catch (const std::invalid_argument& e) {
        return e.what();
    }
}

TEST(ValueTextTest, givesOneTextForEachValue) {
    std::string one = "one";
    std::string empty;
    EXPECT_THAT(textsOf(DalMoTypeString, {cell(&DalMoAttributeValue::theString, one.data()),
                                          cell(&DalMoAttributeValue::theString, empty.data())}),
                ElementsAre("one", ""));
    EXPECT_THAT(textsOf(DalMoTypeString, {}), ElementsAre());
}

TEST(ValueTextTest, writesEveryScalarType) {
    using Value = DalMoAttributeValue;
    std::string dn = "Site=4";
    EXPECT_THAT(textsOf(DalMoTypeInt8, {cell(&Value::theInt8, std::int8_t{-128})}), ElementsAre("-128"));
    EXPECT_THAT(textsOf(DalMoTypeInt16, {cell(&Value::theInt16, std::int16_t{-32768})}), ElementsAre("-32768"));
    EXPECT_THAT(textsOf(DalMoTypeInt32, {cell(&Value::theInt32, -5)}), ElementsAre("-5"));
    EXPECT_THAT(textsOf(DalMoTypeInt64, {cell(&Value::theInt64, std::numeric_limits<std::int64_t>::min())}),
                ElementsAre("-9223372036854775808"));
    EXPECT_THAT(textsOf(DalMoTypeUint8, {cell(&Value::theUint8, std::uint8_t{255})}), ElementsAre("255"));
    EXPECT_THAT(textsOf(DalMoTypeUint16, {cell(&Value::theUint16, std::uint16_t{65535})}), ElementsAre("65535"));
    EXPECT_THAT(textsOf(DalMoTypeUint32, {cell(&Value::theUint32, 4294967295U)}), ElementsAre("4294967295"));
    EXPECT_THAT(textsOf(DalMoTypeUint64, {cell(&Value::theUint64, std::numeric_limits<std::uint64_t>::max())}),
                ElementsAre("18446744073709551615"));
    EXPECT_THAT(textsOf(DalMoTypeBool, {cell(&Value::theBool, true), cell(&Value::theBool, false)}),
                ElementsAre("true", "false"));
    EXPECT_THAT(textsOf(DalMoTypeReference, {cell(&Value::theString, dn.data())}), ElementsAre("Site=4"));
    EXPECT_THAT(textsOf(DalMoTypeEnum, {cell(&Value::theInt64, std::int64_t{3})}), ElementsAre("3"));
    EXPECT_THAT(textsOf(DalMoTypeDouble, {cell(&Value::theDouble, 0.1), cell(&Value::theDouble, -1e300)}),
                ElementsAre("0.1", "-1e+300"));
}

TEST(ValueTextTest, anActionsVoidResultHasNoTexts) {
    EXPECT_THAT(textsOf(DalMoTypeVoid, {}), ElementsAre());
}

TEST(ValueTextTest, refusesContainersThatCannotBeRead) {
    DalMoAttributeValue value{};
    value.theString = nullptr;
    const DalMoAttributeValueContainer withoutCells = {DalMoTypeString, 1, nullptr};
    const DalMoAttributeValueContainer withNullText = {DalMoTypeString, 1, &value};
    const DalMoAttributeValueContainer withStructure = {DalMoTypeStruct, 1, &value};
    const DalMoAttributeValueContainer withUnknownType = {99, 1, &value};
    EXPECT_EQ(faultOf(nullptr), "there is no value container");
    EXPECT_EQ(faultOf(&withoutCells), "the value container has no cells");
    EXPECT_EQ(faultOf(&withNullText), "a value is a null text");
    EXPECT_EQ(faultOf(&withStructure), "the values are of type 13, which has no text");
    EXPECT_EQ(faultOf(&withUnknownType), "the values are of type 99, which has no text");
}

}  // namespace

}  // namespace TevAgent
