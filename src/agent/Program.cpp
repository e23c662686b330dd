#include "Program.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "CommandLine.h"
#include "Commands.h"
#include "Ending.h"
#include "ExitGuard.h"
#include "Failure.h"
#include "Interruption.h"
#include "LoggingWrapper.h"
#include "StandardOutput.h"

namespace TevAgent {

namespace {

[[noreturn]] void refuse(const std::string& option, const std::string& file, const std::error_code& error) {
    throw Failure(ExitStatus::NotStarted,
                  "the file of " + option + ", " + file + ", cannot be used: " + error.message());
}

/// Lets the components find their configuration a second time.
void announceConfiguration(const Settings& settings) {
    std::error_code error;
    if (settings.isConfigurationNamed && access(settings.configuration.c_str(), F_OK) != 0) {
        error.assign(errno, std::generic_category());
    }
    const std::filesystem::path file = error ? "" : std::filesystem::absolute(settings.configuration, error);
    if (error) {
        refuse("--config", settings.configuration, error);
    }
    setenv("TEV_CONFIG_DIR", file.parent_path().c_str(), 1);
}

/// The log makes do with standard error when its file cannot be opened; an operator who names one has to know.
void openLog(const std::string& file) {
    // As the log opens it; kept open until the log has it too, so that the reader of a pipe does not see an end.
    const int probe = open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0640);
    if (probe == -1) {
        refuse("--log-file", file, std::error_code(errno, std::generic_category()));
    }
    setenv("TEV_LOG_FILE", file.c_str(), 1);
    Tev::LoggingWrapper::instance();
    close(probe);
}

/// Tells the libraries of the process what they ask the environment for; there are no other threads yet.
void setEnvironment(const Settings& settings) {
    if (!settings.configuration.empty()) {
        announceConfiguration(settings);
    }
    if (!settings.logFile.empty()) {
        openLog(settings.logFile);
    }
    // Without a wish for the log, the operator reads of each failure once: here, not in the log as well.
    const bool isLogWanted = getenv("TEV_LOG_LEVEL") != nullptr || getenv("TEV_LOG_FILE") != nullptr;
    if (settings.logLevel || !isLogWanted) {
        Tev::LoggingWrapper::instance().set_level(settings.logLevel.value_or(0));
    }
}

ExitStatus execute(int argumentCount, const char* const* arguments, StandardOutput& output) {
    const Settings settings = CommandLine::parse(argumentCount, arguments, output.screen());
    if (!settings.information.empty()) {
        output.write(settings.information);
        return ExitStatus::Done;
    }
    setEnvironment(settings);
    return Commands(settings, output).run();
}

}  // namespace

int Program::run(int argumentCount, const char* const* arguments) {
    const ExitGuard guard;
    return static_cast<int>(Ending::of([&] {
        StandardOutput output;
        Interruption::watch();
        // Where whoever started the program ignores it, the system does not tell how a check's processes ended.
        std::signal(SIGCHLD, SIG_DFL);
        const ExitStatus status = execute(argumentCount, arguments, output);
        output.close();
        return status;
    }));
}

}  // namespace TevAgent
