// docs/abi-contract.md has a row for each entry of the framework's tables, and for the entry points of a library.

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <regex>
#include <sstream>

#include "FileText.h"
#include "MarkdownPage.h"

namespace TevTest {

namespace {

namespace fs = std::filesystem;

/// The entries of all tables by their names, "Table::entry", with the tags that the header gives them. The entry points
/// of a library have the header in place of the table.
std::map<std::string, std::string> entriesOfTheHeaders() {
    const std::regex table("typedef struct (\\w+) \\{");
    const std::regex entry("(?:void\\*?|TevReturnT) \\(\\*(\\w+)\\)\\(.*");
    const std::regex entryPoint("^DAL_ENTRY_POINT (?:void|TevReturnT) (\\w+)\\(.*");
    const std::regex tags("\\[((?:[a-z-]+(?:, )?)+)\\]$");
    std::map<std::string, std::string> entries;
    for (const fs::directory_entry& header : fs::directory_iterator(TEV_SOURCES "/src/spi/inc")) {
        std::istringstream text(contents(header.path()));
        std::string tableName;
        std::string lastTags;
        std::smatch match;
        for (std::string line; std::getline(text, line);) {
            if (std::regex_search(line, match, table)) {
                tableName = match[1];
            } else if (line.find("///") != std::string::npos && std::regex_search(line, match, tags)) {
                lastTags = match[1];
            } else if (std::regex_search(line, match, entry)) {
                entries[tableName + "::" + match[1].str()] = std::exchange(lastTags, "");
            } else if (std::regex_search(line, match, entryPoint)) {
                entries[header.path().filename().string() + "::" + match[1].str()] = std::exchange(lastTags, "");
            }
        }
    }
    return entries;
}

/// The same as the page has it: the table is named by the heading, the tags stand in the second column.
std::map<std::string, std::string> entriesOfThePage() {
    const MarkdownPage page(contents(TEV_SOURCES "/docs/abi-contract.md"));
    std::map<std::string, std::string> entries;
    std::string tableName;
    for (const std::string& line : page.prose) {
        if (line.compare(0, 1, "#") == 0) {
            const std::vector<std::string> code = MarkdownPage::codeIn(line);
            tableName = code.empty() ? "" : code.front();
        } else if (line.compare(0, 3, "| `") == 0 && !tableName.empty()) {
            const std::vector<std::string> row = MarkdownPage::rowOf(line);
            std::string tags;
            for (const std::string& tag : MarkdownPage::codeIn(row.at(1))) {
                tags += (tags.empty() ? "" : ", ") + tag;
            }
            for (const std::string& name : MarkdownPage::codeIn(row.at(0))) {
                entries[tableName + "::" + name] = tags;
            }
        }
    }
    return entries;
}

TEST(ContractPageTest, hasEachEntryWithItsTags) {
    const auto entries = entriesOfTheHeaders();
    ASSERT_GT(entries.size(), 25U);
    ASSERT_EQ(entries.count("DalPortal.h::dalLCMinit"), 1U);
    EXPECT_EQ(entriesOfThePage(), entries);
}

}  // namespace

}  // namespace TevTest
