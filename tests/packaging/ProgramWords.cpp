#include "ProgramWords.h"

#include <regex>

#include "CommandOutput.h"

namespace TevTest {

namespace {

std::set<std::string> wordsIn(const std::string& text, const char* pattern) {
    const std::regex words(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator word(text.begin(), text.end(), words); word != std::sregex_iterator(); ++word) {
        found.insert((*word)[1]);
    }
    return found;
}

}  // namespace

std::set<std::string> ProgramWords::commands() {
    const std::string help = outputOf(TEV_AGENT_PROGRAM " --help");
    return wordsIn(help.substr(help.find("Commands:\n")), "\n  ([a-z]+)");
}

std::set<std::string> ProgramWords::options(const std::string& command) {
    // The last lines name an option of the program.
    std::string help = outputOf(TEV_AGENT_PROGRAM " " + command + " --help");
    return wordsIn(help.substr(0, help.find("\n\nThe options of tev-agent")), "(--[a-z-]+)");
}

}  // namespace TevTest
