#include <cstddef>
#include <filesystem>
#include <memory>
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
/// own.
class Node {
public:
    explicit Node(std::size_t count) {
        namespace fs = std::filesystem;
        fs::copy(EXAMPLE_NODE, folder.path(), fs::copy_options::recursive);
        const std::vector<fs::path> examples = {fs::directory_iterator(folder.path() / "models"), {}};
        for (std::size_t i = 0; i < count; ++i) {
            std::string text = TevTest::contents(examples[i % examples.size()]);
            const std::string number = std::to_string(i);
            text.insert(text.find('"', text.find("<mom name=\"") + 11), number);
            folder.write("models/" + number + ".xml", text);
        }
        for (const fs::path& example : examples) {
            fs::remove(example);
        }
    }

    std::string path() const { return folder.path(); }

private:
    TevTest::TempFolder folder;
};

Sides list(double ProgramTimes::*time) {
    const auto node = std::make_shared<Node>(1000);
    return {[=] {
                return run({TEV_AGENT, "--node", node->path(), "list"}).*time;
            },
            [=] {
                return run({READ_HEADS, TEV_COMPONENT_LIBRARY, node->path() + "/models"}).*time;
            }};
}

}  // namespace

void addAgentRows() {
    addRow("tev-agent list, 1,000 model files", atMost(3), [] { return list(&ProgramTimes::elapsed); });
    addRow("tev-agent list, processor time", noTarget(), [] { return list(&ProgramTimes::processor); });
}

}  // namespace TevBench
