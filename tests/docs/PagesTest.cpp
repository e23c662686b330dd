// What the pages of the documentation refer to is there, and what has to be told in them is.

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include "FileText.h"
#include "MarkdownPage.h"
#include "Pages.h"
#include "SourceText.h"

namespace TevTest {

namespace {

namespace fs = std::filesystem;

using testing::AnyOf;
using testing::HasSubstr;

/// The name that a heading is referred to by.
std::string anchorOf(const std::string& heading) {
    std::string anchor;
    for (const char c : heading.substr(heading.find_first_not_of("# "))) {
        if (c == ' ' || c == '-') {
            anchor += '-';
        } else if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_') {
            anchor += static_cast<char>(std::tolower(c));
        }
    }
    return anchor;
}

bool hasAnchor(const fs::path& file, const std::string& anchor) {
    const std::vector<std::string> lines = MarkdownPage(contents(file)).prose;
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& line) { return line[0] == '#' && anchorOf(line) == anchor; });
}

bool isSession(const MarkdownPage::Block& block) {
    return std::any_of(block.lines.begin(), block.lines.end(),
                       [](const std::string& line) { return line.compare(0, 2, "$ ") == 0; });
}

TEST(PagesTest, referOnlyToWhatIsThere) {
    const std::regex link("\\]\\(([^)#:]*)(?:#([^)]*))?\\)");
    unsigned int links = 0;
    for (const fs::path& file : pages()) {
        for (const std::string& line : MarkdownPage(contents(file)).prose) {
            for (std::sregex_iterator match(line.begin(), line.end(), link), end; match != end; ++match) {
                const std::string name = (*match)[1];
                const fs::path target = name.empty() ? file : file.parent_path() / name;
                EXPECT_TRUE(fs::exists(target)) << file << " refers to " << target;
                EXPECT_TRUE((*match)[2].length() == 0 || hasAnchor(target, (*match)[2]))
                    << file << " refers to " << target << ", and there to " << (*match)[2];
                ++links;
            }
        }
    }
    EXPECT_GT(links, 30U);
}

TEST(PagesTest, showSessionsOnlyInBlocksThatAreTyped) {
    for (const fs::path& file : pages()) {
        for (const MarkdownPage::Block& block : MarkdownPage(contents(file)).blocks) {
            EXPECT_THAT(block.kind, AnyOf("c", "cmake", "console", "cpp", "json", "mermaid", "sh", "xml"))
                << file << ", line " << block.firstLine;
            EXPECT_TRUE(block.kind == "console" || !isSession(block)) << file << ", line " << block.firstLine;
        }
    }
}

TEST(PagesTest, tellOfEachVariableOfTheEnvironmentThatIsRead) {
    const std::string page = contents(TEV_SOURCES "/docs/configuration.md");
    const std::regex variable("TEV_[A-Z_]+|XDG_[A-Z_]+|HOME|NO_COLOR|COLUMNS|TERM");
    std::set<std::string> names;
    for (const fs::directory_entry& file : fs::recursive_directory_iterator(TEV_SOURCES "/src")) {
        if (file.path().extension() == ".cpp" || file.path().extension() == ".h") {
            for (const SourceText& text : SourceText::in(contents(file.path()))) {
                if (std::regex_match(text.text, variable)) {
                    names.insert(text.text);
                }
            }
        }
    }
    EXPECT_THAT(names, testing::IsSupersetOf({"TEV_CONFIG_DIR", "TEV_LOG_LEVEL", "TEV_STATE_DIR", "HOME"}));
    for (const std::string& name : names) {
        EXPECT_THAT(page, HasSubstr("`" + name + "`"));
    }
}

TEST(PagesTest, giveAReasonForEachPackageThatTheScriptsInstall) {
    const std::string page = contents(TEV_SOURCES "/docs/dependencies.md");
    const std::regex list("_packages=\\(([^)]*)\\)");
    const std::string script = contents(TEV_SOURCES "/scripts/lib.sh");
    unsigned int packages = 0;
    for (std::sregex_iterator match(script.begin(), script.end(), list), end; match != end; ++match) {
        std::istringstream names((*match)[1]);
        for (std::string name; names >> name; ++packages) {
            EXPECT_THAT(page, HasSubstr("`" + name + "`"));
        }
    }
    EXPECT_GT(packages, 15U);
}

}  // namespace

}  // namespace TevTest
