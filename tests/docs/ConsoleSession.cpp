#include "ConsoleSession.h"

#include <sstream>
#include <stdexcept>

#include "ChildProcess.h"
#include "FileText.h"
#include "MarkdownPage.h"

namespace TevTest {

namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

const std::string prompt = "$ ";
const std::string anything = "\u2026";

struct Command {
    std::size_t line;
    std::string text;
    Lines expected{};
    bool mayFail = false;
};

void dropBlankEnd(Lines& lines) {
    while (!lines.empty() && lines.back().empty()) {
        lines.pop_back();
    }
}

void addCommandsOf(const MarkdownPage::Block& block, std::vector<Command>& commands) {
    const std::size_t first = commands.size();
    bool goesOn = false;
    for (std::size_t i = 0; i < block.lines.size(); ++i) {
        const std::string& line = block.lines[i];
        if (goesOn) {
            commands.back().text += "\n" + line;
        } else if (line.compare(0, prompt.size(), prompt) == 0) {
            commands.push_back({block.firstLine + i, line.substr(prompt.size())});
        } else if (commands.size() == first) {
            throw std::runtime_error("line " + std::to_string(block.firstLine + i) + ": output without a command");
        } else {
            commands.back().expected.push_back(line);
            continue;
        }
        goesOn = !line.empty() && line.back() == '\\';
    }
    for (std::size_t i = first; i < commands.size(); ++i) {
        dropBlankEnd(commands[i].expected);
        commands[i].mayFail = i + 1 < commands.size() && commands[i + 1].text == "echo $?";
    }
}

std::vector<Command> commandsOf(const std::string& page) {
    std::vector<Command> commands;
    for (const MarkdownPage::Block& block : MarkdownPage(page).blocks) {
        if (block.kind == "console") {
            addCommandsOf(block, commands);
        }
    }
    return commands;
}

bool matches(const std::string& expected, const std::string& line) {
    const std::size_t gap = expected.find(anything);
    if (gap == std::string::npos) {
        return line == expected;
    }
    if (line.compare(0, gap, expected, 0, gap) != 0) {
        return false;
    }
    const std::string rest = expected.substr(gap + anything.size());
    for (std::size_t begin = gap; begin <= line.size(); ++begin) {
        if (matches(rest, line.substr(begin))) {
            return true;
        }
    }
    return false;
}

bool matches(Lines::const_iterator expected, Lines::const_iterator expectedEnd, Lines::const_iterator line,
             Lines::const_iterator lineEnd) {
    if (expected == expectedEnd) {
        return line == lineEnd;
    }
    if (*expected == anything) {
        return matches(expected + 1, expectedEnd, line, lineEnd) ||
               (line != lineEnd && matches(expected, expectedEnd, line + 1, lineEnd));
    }
    return line != lineEnd && matches(*expected, *line) && matches(expected + 1, expectedEnd, line + 1, lineEnd);
}

std::string textOf(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

Lines linesOf(const fs::path& file) {
    std::istringstream stream(contents(file));
    Lines lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    dropBlankEnd(lines);
    return lines;
}

/// What is otherwise, or nothing. The shell leaves two files for each command, its output and its status; for one that
/// it did not come to there is none.
std::string differenceFrom(const Command& command, const fs::path& notes) {
    const Lines output = linesOf(notes / "output");
    const std::string status = contents(notes / "status");
    std::string difference;
    if (status.empty()) {
        difference = "does not come to an end\n";
    } else if (status != "0\n" && !command.mayFail) {
        difference = "has the exit status " + status;
    }
    if (!matches(command.expected.begin(), command.expected.end(), output.begin(), output.end())) {
        difference += "should write\n" + textOf(command.expected);
    }
    return difference.empty() ? ""
                              : "line " + std::to_string(command.line) + ": $ " + command.text + "\n" + difference +
                                    "and has written\n" + textOf(output);
}

// A command sees the status of the one before. What still runs in the end is told to stop.
constexpr const char* shell = R"sh(
trap 'trap "" TERM; kill 0' EXIT
lastStatus=0
for notes in "$@"; do
    command=$(<"$notes/command")
    (exit "$lastStatus")
    eval "$command" >"$notes/output" 2>&1
    lastStatus=$?
    echo "$lastStatus" >"$notes/status"
done
)sh";

}  // namespace

ConsoleSession::ConsoleSession() {
    // The user of a private server, who is another one where tests run as root, has to get at what is served.
    fs::permissions(world.path(), fs::perms(0755));
    // Nothing to build from: a page could otherwise build and run what runs it.
    for (const std::string name : {"examples", "scripts"}) {
        fs::create_symlink(fs::path(TEV_SOURCES) / name, world.path() / name);
    }
    fs::create_directories(world.path() / "build/release");
    for (const std::string name : {"bin", "lib"}) {
        fs::create_symlink(fs::path(TEV_BUILD) / name, world.path() / "build/release" / name);
    }
    // What one page tells how to build.
    fs::create_symlink(TEV_EXAMPLE_COMPONENT, world.path() / "build/uptime.so");
    fs::create_directory(notes.path() / "home");
}

std::vector<std::string> ConsoleSession::differencesFrom(const std::string& page) const {
    const std::vector<Command> commands = commandsOf(page);
    std::vector<std::string> arguments = {"-c", shell, "bash"};
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const fs::path folder = notes.path() / std::to_string(i);
        fs::create_directory(folder);
        notes.write(folder.filename() / fs::path("command"), commands[i].text);
        arguments.push_back(folder);
    }
    ChildProcess::Setting setting;
    setting.workingFolder = world.path();
    setting.environment = {{"HOME", notes.path() / "home"},
                           {"LC_ALL", "C.UTF-8"},
                           {"PATH", TEV_BUILD "/bin:/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin"},
                           {"TEV_STATE_DIR", notes.path() / "state"},
                           {"TMPDIR", world.path()}};
    ChildProcess("/bin/bash", arguments, setting).wait();
    std::vector<std::string> differences;
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const std::string difference = differenceFrom(commands[i], notes.path() / std::to_string(i));
        if (!difference.empty()) {
            differences.push_back(difference);
        }
    }
    return differences;
}

}  // namespace TevTest
