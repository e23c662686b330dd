#include "AlignedTable.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include "Utf8.h"

namespace TevAgent {

namespace {

const AlignedTable::Row header = {"schemaId", "baseModelIdentifier", "options"};
const std::vector<AlignedTable::Row> rows = {{"Transport", "OrvaTransport", "IpSec, Hot Swap, Sync"},
                                             {"Plain", "", ""}};

std::string atWidth(std::size_t width) {
    return AlignedTable::of(header, rows, {width, false});
}

std::size_t widest(const std::string& table) {
    std::size_t most = 0;
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        most = std::max(most, Utf8::columns(line));
    }
    return most;
}

std::string withoutBlanks(std::string text) {
    text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c == ' ' || c == '\n'; }), text.end());
    return text;
}

TEST(AlignedTableTest, staysAsItIsWhereThereIsRoomOrNoLimit) {
    const std::string table =
        "schemaId   baseModelIdentifier  options\n"
        "Transport  OrvaTransport        IpSec, Hot Swap, Sync\n"
        "Plain\n";
    EXPECT_EQ(atWidth(0), table);
    EXPECT_EQ(atWidth(53), table);
    EXPECT_NE(atWidth(52), table);
}

TEST(AlignedTableTest, wrapsTheWidestColumnsWhereTextsAreBestBroken) {
    EXPECT_EQ(atWidth(50),
              "schemaId   baseModelIdentifier  options\n"
              "Transport  OrvaTransport        IpSec, Hot Swap,\n"
              "                                 Sync\n"
              "Plain\n");
    EXPECT_EQ(atWidth(36),
              "schemaId   baseModel     options\n"
              "            Identifier\n"
              "Transport  Orva          IpSec, Hot\n"
              "            Transport     Swap, Sync\n"
              "Plain\n");
}

TEST(AlignedTableTest, breaksRatherAtABlankThanBehindAMarkAndRatherThereThanBeforeACapital) {
    const auto lines = [](const std::string& text) { return AlignedTable::of({"a"}, {{text}}, {9, false}); };
    EXPECT_EQ(lines("ab c-deFghi"), "a\nab\n c-deFghi\n");
    EXPECT_EQ(lines("abc-deFghi"), "a\nabc-\n deFghi\n");
    EXPECT_EQ(lines("abcdeFghij"), "a\nabcde\n Fghij\n");
    EXPECT_EQ(lines("12345678 0"), "a\n12345678\n 0\n");
    EXPECT_EQ(lines("123456789 0"), "a\n123456789\n 0\n");
}

TEST(AlignedTableTest, breaksATextWithoutAGoodPlaceWhereTheColumnEnds) {
    EXPECT_EQ(AlignedTable::of({"a"}, {{"0123456789abcdefghij"}}, {9, false}), "a\n012345678\n 9abcdefg\n hij\n");
}

TEST(AlignedTableTest, breaksNoCharacterInTwo) {
    const std::string wide = "\xe4\xb8\xad";
    EXPECT_EQ(AlignedTable::of({"a"}, {{wide + wide + wide + wide + wide + wide}}, {9, false}),
              "a\n" + wide + wide + wide + wide + "\n " + wide + wide + "\n");
    const std::string composed = "o\xcc\x88";
    EXPECT_EQ(AlignedTable::of({"a"}, {{"1234567" + composed + "9"}}, {8, false}), "a\n1234567" + composed + "\n 9\n");
}

TEST(AlignedTableTest, losesNothingAndIsNeverWiderThanTheScreen) {
    const std::string text = "one-two Three_four,FiveSix  0123456789012345 \xe4\xb8\xad\xe5\x9b\xbd x";
    for (std::size_t width = 8; width < 60; ++width) {
        const std::string table = AlignedTable::of({"title"}, {{text}}, {width, false});
        EXPECT_LE(widest(table), width);
        EXPECT_EQ(withoutBlanks(table), withoutBlanks("title" + text));
    }
    for (std::size_t width = 28; width < 60; ++width) {
        EXPECT_LE(widest(atWidth(width)), width);
    }
}

TEST(AlignedTableTest, becomesBlocksWhereColumnsWouldBeTooNarrow) {
    EXPECT_EQ(atWidth(28).find("schemaId: "), std::string::npos);
    for (const std::size_t width : {27U, 10U, 1U}) {
        EXPECT_EQ(atWidth(width),
                  "schemaId: Transport\n"
                  "baseModelIdentifier: OrvaTransport\n"
                  "options: IpSec, Hot Swap, Sync\n"
                  "\n"
                  "schemaId: Plain\n"
                  "baseModelIdentifier:\n"
                  "options:\n");
    }
}

TEST(AlignedTableTest, narrowColumnsThatFitStayATable) {
    EXPECT_EQ(AlignedTable::of({"a", "b"}, {{"1", "2"}}, {4, false}), "a  b\n1  2\n");
}

TEST(AlignedTableTest, emphasisesTheTitlesOnAScreenWithColours) {
    EXPECT_EQ(AlignedTable::of({"a", "b"}, {{"1", "2"}}, {0, true}), "\x1b[1ma  b\x1b[0m\n1  2\n");
    EXPECT_EQ(AlignedTable::of({"titleOne"}, {{"1"}}, {9, true}), "\x1b[1mtitleOne\x1b[0m\n1\n");
    EXPECT_EQ(AlignedTable::of({"titleOfMany"}, {{"1"}}, {9, true}), "\x1b[1mtitleOf\x1b[0m\n\x1b[1m Many\x1b[0m\n1\n");
    EXPECT_EQ(AlignedTable::of({"titleOne"}, {{"1"}}, {7, true}), "\x1b[1mtitleOne:\x1b[0m 1\n");
}

}  // namespace

}  // namespace TevAgent
