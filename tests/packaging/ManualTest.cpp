#include <gmock/gmock.h>

#include <regex>
#include <string>

#include "FileText.h"
#include "ProgramWords.h"

namespace TevTest {

namespace {

using testing::ContainsRegex;
using testing::IsEmpty;
using testing::Not;

/// The manual's source with hyphens in place of what the formatter makes hyphens of.
std::string manual() {
    return std::regex_replace(contents(TEV_MANUAL), std::regex("\\\\-"), "-");
}

TEST(ManualTest, tellsEveryOptionOfTheHelp) {
    const std::string text = manual();
    std::set<std::string> commands = ProgramWords::commands();
    commands.insert("");
    for (const std::string& command : commands) {
        const std::set<std::string> options = ProgramWords::options(command);
        EXPECT_THAT(options, Not(IsEmpty())) << command;
        for (const std::string& option : options) {
            EXPECT_THAT(text, ContainsRegex(option + "[^a-z-]")) << command;
        }
    }
}

TEST(ManualTest, hasAParagraphForEveryCommandOfTheHelp) {
    const std::set<std::string> commands = ProgramWords::commands();
    EXPECT_THAT(commands, testing::IsSupersetOf({"list", "get", "export", "check"}));
    for (const std::string& command : commands) {
        EXPECT_THAT(manual(), ContainsRegex("\n\\.TP\n\\.BR? " + command + "[ \n]"));
    }
}

}  // namespace

}  // namespace TevTest
