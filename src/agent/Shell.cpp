#include "Shell.h"

#include <unistd.h>

#include <memory>
#include <optional>
#include <vector>

#include "CheckProcess.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Completion.h"
#include "Diagnostics.h"
#include "Ending.h"
#include "Failure.h"
#include "Interruption.h"
#include "LineEditor.h"
#include "ScriptReader.h"
#include "ShellWords.h"

namespace TevAgent {

Shell::Shell(Agent& hostAgent, const Settings& sessionSettings, StandardOutput& resultOutput)
    : agent(hostAgent),
      session(sessionSettings),
      output(resultOutput),
      isInteractive(isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1) {}

ExitStatus Shell::run() {
    std::unique_ptr<LineSource> lines = std::make_unique<ScriptReader>();
    if (isInteractive) {
        const Completion completion(agent);
        lines = std::make_unique<LineEditor>(
            [completion](const auto& before, const auto& begun) { return completion.candidates(before, begun); });
    }
    ExitStatus result = ExitStatus::Done;
    unsigned long number = 0;
    while (!isOver) {
        const std::optional<LineSource::Line> line = lines->next();
        if (!line) {
            break;
        }
        const Diagnostics::ScriptLine place(isInteractive ? 0 : ++number);
        const ExitStatus status = Ending::of([&] { return carryOut(*line); });
        if (Interruption::isRequested() && (!isInteractive || Interruption::isFinal())) {
            return ExitStatus::Interrupted;
        }
        if (Interruption::isRequested()) {
            Interruption::forget();
        }
        if (isInteractive && status == ExitStatus::ReaderGone) {
            return status;  // nothing that is typed could show anything
        }
        if (!isInteractive && result == ExitStatus::Done) {
            result = status;
        }
    }
    return result;
}

ExitStatus Shell::carryOut(const LineSource::Line& line) {
    if (!line.fault.empty()) {
        throw Failure(ExitStatus::WrongUsage, line.fault);
    }
    const std::vector<std::string> words = ShellWords::of(line.text);
    if (words.empty()) {
        return ExitStatus::Done;
    }
    const Settings settings = CommandLine::parseLine(words, session, output.screen());
    if (!settings.information.empty()) {
        output.write(settings.information);
        return ExitStatus::Done;
    }
    if (settings.command == Settings::Command::Quit) {
        isOver = true;
        return ExitStatus::Done;
    }
    return settings.command == Settings::Command::Check ? check(settings) : Commands(settings, output).carryOut(agent);
}

ExitStatus Shell::check(const Settings& settings) {
    const ExitStatus status = CheckProcess::run(settings.arguments, output);
    if (status != ExitStatus::Done && status != ExitStatus::ReaderGone && !isInteractive) {
        // What the check itself says does not name the line.
        Diagnostics::say("the check ended with status " + std::to_string(static_cast<int>(status)));
    }
    return status;
}

}  // namespace TevAgent
