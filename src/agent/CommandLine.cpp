#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <sstream>

#include "Failure.h"
#include "LoggingWrapper.h"

namespace TevAgent {

namespace {

constexpr const char* json = "json";

/// What stands on the command line for several settings, or for one in another form.
struct Words {
    std::string node;
    std::string output = "table";
};

void addOptions(CLI::App& app, Settings& settings, Words& words) {
    app.add_option("--node", words.node,
                   "The node: DIR/models, DIR/managed-objects.xml and, where it is there, "
                   "DIR/libtev_schema_populator.cfg")
        ->type_name("DIR");
    app.add_option("--models", settings.models, "The folder of the model files")->type_name("DIR");
    app.add_option("--objects", settings.objects, "The managed objects of the rest of the node")->type_name("FILE");
    app.add_option("--component", settings.components, "A component to load in place of the usual one; repeatable")
        ->type_name("FILE.so")
        ->allow_extra_args(false);
    app.add_option("--config", settings.configuration, "The component's configuration")->type_name("FILE");
    app.add_option("--log-level", settings.logLevel, "How much is logged: 0 (nothing, the default) to 8 (everything)")
        ->type_name("N")
        ->check(CLI::Range(0, Tev::LoggingWrapper::maxLevel).description(""));
    app.add_option("--log-file", settings.logFile, "Where to log to in place of standard error")->type_name("FILE");
    app.add_option("--output", words.output, "How results are written; the default is table")
        ->type_name("table|json")
        ->check(CLI::IsMember(std::vector<std::string>{words.output, json}).description(""));
}

CLI::App* addCommand(CLI::App& app, Settings& settings, const char* name, Settings::Command command,
                     const char* description) {
    CLI::App* const added = app.add_subcommand(name, description);
    added->footer("The options of tev-agent (tev-agent --help) may stand here, too.");
    added->callback([&settings, command] { settings.command = command; });
    return added;
}

void addCommands(CLI::App& app, Settings& settings) {
    addCommand(app, settings, "list", Settings::Command::List, "Every Schema instance with its attributes");
    CLI::App* const get = addCommand(app, settings, "get", Settings::Command::Get, "One instance");
    get->add_option("DN|SCHEMA-ID", settings.target, "The DN of any object, or a schema id")->required();
    get->add_option("ATTRIBUTE", settings.attributes, "What to show; all attributes of a Schema instance when absent");
    CLI::App* const check =
        addCommand(app, settings, "check", Settings::Command::Check, "Tries a component against its contract");
    check->add_option("FILE.so", settings.checkedLibrary, "The component; the one that is loaded when absent");
}

/// Files of the node stand in where none is named.
void applyNode(const std::string& node, Settings& settings) {
    const std::filesystem::path folder = std::filesystem::path(node + "/").lexically_normal();
    if (settings.models.empty()) {
        settings.models = folder / "models";
    }
    if (settings.objects.empty()) {
        settings.objects = folder / "managed-objects.xml";
    }
    const std::filesystem::path configuration = folder / Settings::configurationName;
    if (settings.configuration.empty() && std::filesystem::exists(configuration)) {
        settings.configuration = configuration;
    }
}

[[noreturn]] void refuse(const std::string& reason) {
    throw Failure(ExitStatus::WrongUsage, reason + " (tev-agent --help shows the usage)");
}

void verify(const Settings& settings) {
    const bool needsModels = settings.command != Settings::Command::Check;
    if (needsModels && settings.models.empty()) {
        refuse("neither --node nor --models says where the models are");
    }
    const std::string name = std::filesystem::path(settings.configuration).filename();
    if (!settings.configuration.empty() && name != Settings::configurationName) {
        refuse("the file of --config must be named " + std::string(Settings::configurationName) + ", not " + name);
    }
}

}  // namespace

Settings CommandLine::parse(int argumentCount, const char* const* arguments) {
    Settings settings;
    Words words;
    CLI::App app("Hosts the management components of a node and shows what they serve.", "tev-agent");
    app.require_subcommand(0, 1);  // that there is one is verified last, so that an unknown one is named
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.get_formatter()->label("Subcommands", "Commands");
    app.fallthrough();  // the options may stand behind the command, too
    app.set_help_flag("-h,--help", "Show this help");
    app.set_version_flag("--version", "tev-agent " TEV_VERSION, "Show the version");
    addOptions(app, settings, words);
    addCommands(app, settings);
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::Success& e) {
        std::ostringstream text;
        app.exit(e, text, text);
        settings.information = text.str();
        return settings;
    } catch (const CLI::ParseError& e) {
        refuse(e.what());
    }
    if (app.get_subcommands().empty()) {
        refuse("no command is given");
    }
    if (!words.node.empty()) {
        applyNode(words.node, settings);
    }
    settings.output = words.output == json ? Settings::Output::Json : Settings::Output::Table;
    verify(settings);
    return settings;
}

}  // namespace TevAgent
