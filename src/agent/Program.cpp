#include "Program.h"

#include <cstdlib>
#include <exception>
#include <filesystem>

#include "CommandLine.h"
#include "Commands.h"
#include "Diagnostics.h"
#include "Failure.h"
#include "Interruption.h"
#include "LoggingWrapper.h"
#include "StandardOutput.h"

namespace TevAgent {

namespace {

/// Tells the libraries of the process what they ask the environment for; there are no other threads yet.
void setEnvironment(const Settings& settings) {
    if (!settings.configuration.empty()) {
        const std::filesystem::path folder = std::filesystem::absolute(settings.configuration).parent_path();
        setenv("TEV_CONFIG_DIR", folder.c_str(), 1);
    }
    if (!settings.logFile.empty()) {
        setenv("TEV_LOG_FILE", settings.logFile.c_str(), 1);
    }
    // Without a wish for the log, the operator reads of each failure once: here, not in the log as well.
    const bool isLogWanted = getenv("TEV_LOG_LEVEL") != nullptr || getenv("TEV_LOG_FILE") != nullptr;
    if (settings.logLevel || !isLogWanted) {
        Tev::LoggingWrapper::instance().set_level(settings.logLevel.value_or(0));
    }
}

ExitStatus execute(int argumentCount, const char* const* arguments, StandardOutput& output) {
    const Settings settings = CommandLine::parse(argumentCount, arguments);
    if (!settings.information.empty()) {
        output.write(settings.information);
        return ExitStatus::Done;
    }
    setEnvironment(settings);
    return Commands(settings, output).run();
}

}  // namespace

int Program::run(int argumentCount, const char* const* arguments) {
    ExitStatus status = ExitStatus::OperationFailed;
    try {
        StandardOutput output;
        Interruption::watch();
        status = execute(argumentCount, arguments, output);
        output.close();
    } catch (const Failure& e) {
        Diagnostics::say(e.what());
        status = e.status();
    } catch (const Interrupted& e) {
        Diagnostics::say(e.what());
        status = ExitStatus::Interrupted;
    } catch (const std::exception& e) {
        Diagnostics::say(e.what());
        status = ExitStatus::OperationFailed;
    }
    return static_cast<int>(status);
}

}  // namespace TevAgent
