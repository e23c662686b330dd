#include "TableText.h"

#include <gmock/gmock.h>

#include "ComponentCheck.h"

namespace TevAgent {

namespace {

using testing::EndsWith;

const std::vector<std::string> names = {"schemaId", "version", "options"};

Instance instance(const std::string& id, const std::vector<std::string>& version,
                  const std::vector<std::string>& options) {
    return {"", {{"schemaId", {id}}, {"version", version}, {"options", options}}};
}

TEST(TableTextTest, hasAHeaderAndARowForEachInstanceInAlignedColumns) {
    EXPECT_EQ(TableText::of(names, {instance("A", {"1.22.333"}, {"x"}), instance("LongModelName", {"2"}, {"y"})}),
              "schemaId       version   options\n"
              "A              1.22.333  x\n"
              "LongModelName  2         y\n");
}

TEST(TableTextTest, hasOnlyTheHeaderWithoutInstances) {
    EXPECT_EQ(TableText::of(names, {}), "schemaId  version  options\n");
}

TEST(TableTextTest, showsNoValueAsNothingAndLeavesNoBlanksAtTheEndOfALine) {
    EXPECT_EQ(TableText::of(names, {instance("A", {}, {"x"}), instance("B", {"1"}, {}), instance("C", {}, {})}),
              "schemaId  version  options\n"
              "A                  x\n"
              "B         1\n"
              "C\n");
}

TEST(TableTextTest, joinsSeveralValuesWithACommaAndABlank) {
    EXPECT_EQ(TableText::of({"options"}, {{"", {{"options", {"IpSec", "Sync", "x"}}}}}), "options\nIpSec, Sync, x\n");
    EXPECT_EQ(TableText::of({"options"}, {{"", {{"options", {"", "x"}}}}}), "options\n, x\n");
}

TEST(TableTextTest, alignsByColumnsOfTheTerminal) {
    EXPECT_EQ(TableText::of(names, {instance("M\xc3\xb6\xc3\xb6re-Mod", {"1"}, {}), instance("plain", {"2"}, {})}),
              "schemaId   version  options\n"
              "M\xc3\xb6\xc3\xb6re-Mod  1\n"
              "plain      2\n");
    EXPECT_EQ(
        TableText::of(names, {instance("\xe4\xb8\xad\xe5\x9b\xbd Model", {"1"}, {}), instance("plain", {"2"}, {})}),
        "schemaId    version  options\n"
        "\xe4\xb8\xad\xe5\x9b\xbd Model  1\n"
        "plain       2\n");
}

TEST(TableTextTest, makesControlCharactersHarmless) {
    EXPECT_EQ(TableText::of({"a"}, {{"",
                                     {{"a",
                                       {"x\ny\x1b[2J\xc2\x9b"
                                        "1m\x80"}}}}}),
              "a\nx\\ny\\x1b[2J\\x9b1m\xef\xbf\xbd\n");
}

TEST(TableTextTest, keepsToTheScreen) {
    EXPECT_EQ(
        TableText::of({"version", "options"}, {{"", {{"version", {"1"}}, {"options", {"Sync", "IpSec"}}}}}, {17, true}),
        "\x1b[1mversion  options\x1b[0m\n1        Sync,\n          IpSec\n");
}

TEST(TableTextTest, aScreenWithColoursObeysNothingButThem) {
    const Screen screen{0, true};
    EXPECT_EQ(TableText::of({"a\x1b[2J"}, {{"", {{"a", {"x\x1b[2J"}}}}}, screen),
              "\x1b[1ma\\x1b[2J\x1b[0m\nx\\x1b[2J\n");
    EXPECT_EQ(TableText::of(CheckResult{"a.b", "It is", CheckResult::Outcome::Passed, "\x1b[2J"}, screen),
              "\x1b[32mpassed\x1b[0m   a.b                              It is: \\x1b[2J\n");
    EXPECT_EQ(TableText::of(ExportResult{"a\x1b[2J", false, "\x1b[2J"}, screen),
              "a\\x1b[2J: \x1b[31mfailed\x1b[0m: \\x1b[2J\n");
}

TEST(TableTextTest, writesAnExportResultOnOneLine) {
    EXPECT_EQ(TableText::of(ExportResult{"Plain", true, ""}), "Plain: exported\n");
    EXPECT_EQ(TableText::of(ExportResult{"Plain", true, "done"}), "Plain: exported: done\n");
    EXPECT_EQ(TableText::of(ExportResult{"Plain", false, "a\nb"}), "Plain: failed: a\\nb\n");
}

TEST(TableTextTest, writesACheckResultOnOneLine) {
    using Outcome = CheckResult::Outcome;
    EXPECT_EQ(TableText::of(CheckResult{"a.b", "It is", Outcome::Passed, ""}),
              "passed   a.b                              It is\n");
    EXPECT_EQ(TableText::of(CheckResult{"a.b", "It is", Outcome::Warning, "no\nfile"}),
              "warning  a.b                              It is: no\\nfile\n");
}

TEST(TableTextTest, descriptionsOfAllItemsBeginInOneColumnApartFromTheIds) {
    for (const CheckItem& item : ComponentCheck::itemsNamed({})) {
        const std::string line = TableText::of(CheckResult{item.id, "It is", CheckResult::Outcome::Passed, ""});
        EXPECT_EQ(line.size(), std::string("passed   a.b                              It is\n").size()) << line;
        EXPECT_THAT(line, EndsWith(" It is\n"));
    }
}

TEST(TableTextTest, countsTheCheckResultsOfEachKind) {
    using Outcome = CheckResult::Outcome;
    EXPECT_EQ(TableText::summaryOf(
                  {{"", "", Outcome::Crashed, ""}, {"", "", Outcome::Passed, ""}, {"", "", Outcome::Passed, ""}}),
              "2 passed, 1 crashed\n");
}

}  // namespace

}  // namespace TevAgent
