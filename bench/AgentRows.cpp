#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "FileText.h"
#include "Program.h"
#include "Row.h"
#include "Rows.h"
#include "TempFolder.h"

namespace TevBench {

namespace {

/// A node like the example, with `count` model files: those of the example again and again, each under a name of its
/// own; and the two programs that list it.
class Node {
public:
    /// Throws std::logic_error when the programs do not list every model.
    explicit Node(std::size_t count) {
        namespace fs = std::filesystem;
        fs::copy(EXAMPLE_NODE, folder.path(), fs::copy_options::recursive);
        const std::vector<fs::path> examples = {fs::directory_iterator(folder.path() / "models"), {}};
        std::vector<std::string> names;
        for (std::size_t i = 0; i < count; ++i) {
            std::string text = TevTest::contents(examples[i % examples.size()]);
            const std::string number = std::to_string(i);
            const std::size_t begin = text.find("<mom name=\"") + 11;
            const std::size_t end = text.find('"', begin);
            names.push_back(text.substr(begin, end - begin) + number);
            text.insert(end, number);
            folder.write("models/" + number + ".xml", text);
        }
        for (const fs::path& example : examples) {
            fs::remove(example);
        }
        requireNames(floorWords(), names);
        names.emplace_back("schemaId");  // the head of the table
        requireNames(agentWords(), names);
    }

    std::vector<std::string> agentWords() const { return {TEV_AGENT, "--node", folder.path(), "list"}; }
    std::vector<std::string> floorWords() const {
        return {READ_HEADS, TEV_COMPONENT_LIBRARY, folder.path() / "models"};
    }

private:
    /// The first words of the lines that the program writes have to be these, in any order.
    void requireNames(const std::vector<std::string>& words, std::vector<std::string> names) const {
        const std::string output = folder.path() / "output";
        run(words, output);
        std::istringstream lines(TevTest::contents(output));
        std::vector<std::string> listed;
        for (std::string line; std::getline(lines, line);) {
            listed.push_back(line.substr(0, line.find(' ')));
        }
        std::sort(listed.begin(), listed.end());
        std::sort(names.begin(), names.end());
        if (listed != names) {
            throw std::logic_error(words[0] + " does not list every model");
        }
    }

    TevTest::TempFolder folder;
};

Sides list(double ProgramTimes::*time) {
    const auto node = std::make_shared<Node>(1000);
    return {[=] { return run(node->agentWords()).*time; }, [=] { return run(node->floorWords()).*time; }};
}

}  // namespace

void addAgentRows() {
    // Single pairs of whole processes are far apart.
    addLongRow("tev-agent list, 1,000 model files", atMost(3), 10, [] { return list(&ProgramTimes::elapsed); });
    addLongRow("tev-agent list, processor time", noTarget(), 10, [] { return list(&ProgramTimes::processor); });
}

}  // namespace TevBench
