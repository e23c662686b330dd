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

// Columns of eight left "Diagnosti csModel", and titles in pieces.
TEST(AlignedTableTest, breaksNoWordAndNoTitleInTheMiddle) {
    const AlignedTable::Row titles = {"schemaId", "identifier", "selectedModelOptions"};
    const AlignedTable::Row cells = {"DiagnosticsModel", "Synchronization", "Hot-Swap, Scheduled"};
    EXPECT_EQ(AlignedTable::of(titles, {cells}, {40, false}),
              "schemaId     identifier       selected\n"
              "                               Model\n"
              "                               Options\n"
              "Diagnostics  Synchronization  Hot-Swap,\n"
              " Model                         Scheduled\n");
    EXPECT_EQ(AlignedTable::of(titles, {cells}, {39, false}),
              "schemaId: DiagnosticsModel\n"
              "identifier: Synchronization\n"
              "selectedModelOptions: Hot-Swap, Scheduled\n");
}

TEST(AlignedTableTest, breaksOnlyAWordOfACellThatIsVeryLong) {
    const std::string word = "abcdefghijklmnopqrst";
    const auto lines = [](const std::string& title, const std::string& cell) {
        return AlignedTable::of({title}, {{cell}}, {20, false});
    };
    EXPECT_EQ(lines("a", word), "a\n" + word + "\n");
    EXPECT_EQ(lines("a", word + word), "a\n" + word + "\n abcdefghijklmnopqrs\n t\n");
    EXPECT_EQ(lines(word + "uv", "1"), word + "uv: 1\n");
    EXPECT_EQ(AlignedTable::of({"a"}, {{word}}, {19, false}), "a: " + word + "\n");
}

TEST(AlignedTableTest, breaksNoCharacterInTwo) {
    const std::string wide = "\xe4\xb8\xad";
    const std::string wides = wide + wide + wide + wide + wide + wide + wide + wide + wide + wide;
    EXPECT_EQ(AlignedTable::of({"a"}, {{wides + wide + wide}}, {21, false}),
              "a\n" + wides + "\n " + wide + wide + "\n");
    const std::string word = "1234567890123456789o\xcc\x88";
    EXPECT_EQ(AlignedTable::of({"a"}, {{word + "9"}}, {20, false}), "a\n" + word + "\n 9\n");
}

TEST(AlignedTableTest, losesNothingAndIsNeverWiderThanTheScreen) {
    const std::string text = "one-two Three_four,FiveSix  0123456789012345 \xe4\xb8\xad\xe5\x9b\xbd x";
    for (std::size_t width = 17; width < 60; ++width) {
        const std::string table = AlignedTable::of({"title"}, {{text}}, {width, false});
        EXPECT_LE(widest(table), width);
        EXPECT_EQ(withoutBlanks(table), withoutBlanks("title" + text));
    }
    for (std::size_t width = 32; width < 60; ++width) {
        EXPECT_LE(widest(atWidth(width)), width);
    }
}

TEST(AlignedTableTest, becomesBlocksWhereColumnsWouldBeTooNarrowForTheirWords) {
    EXPECT_EQ(atWidth(32).find("schemaId: "), std::string::npos);
    for (const std::size_t width : {31U, 10U, 1U}) {
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

TEST(AlignedTableTest, hasNoColumnOfOneShortWordALine) {
    EXPECT_EQ(AlignedTable::of({"a"}, {{"1, 2, 3, 4, 5"}}, {8, false}), "a\n1, 2, 3,\n 4, 5\n");
    EXPECT_EQ(AlignedTable::of({"a"}, {{"1, 2, 3, 4, 5"}}, {7, false}), "a: 1, 2, 3, 4, 5\n");
}

TEST(AlignedTableTest, emphasisesTheTitlesOnAScreenWithColours) {
    EXPECT_EQ(AlignedTable::of({"a", "b"}, {{"1", "2"}}, {0, true}), "\x1b[1ma  b\x1b[0m\n1  2\n");
    EXPECT_EQ(AlignedTable::of({"titleOne"}, {{"1"}}, {9, true}), "\x1b[1mtitleOne\x1b[0m\n1\n");
    EXPECT_EQ(AlignedTable::of({"titleOfMany"}, {{"1"}}, {9, true}), "\x1b[1mtitleOf\x1b[0m\n\x1b[1m Many\x1b[0m\n1\n");
    EXPECT_EQ(AlignedTable::of({"titleOne"}, {{"1"}}, {7, true}), "\x1b[1mtitleOne:\x1b[0m 1\n");
}

}  // namespace

}  // namespace TevAgent
