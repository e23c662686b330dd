#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <system_error>
#include <utility>

#include "ComponentCheck.h"
#include "Failure.h"
#include "HelpFormatter.h"
#include "LoggingWrapper.h"
#include "RouteTable.h"
#include "SchemaClass.h"

namespace TevAgent {

namespace {

constexpr const char* table = "table";
constexpr const char* json = "json";

/// What stands on the command line for several settings, or for one in another form.
struct Words {
    std::string node;
    std::string output = table;
};

/// Keeps an empty text, which a shell makes of a variable that is not set, from being taken for no option at all.
const CLI::Validator notEmpty([](const std::string& text) { return text.empty() ? "the value is empty" : ""; }, "");

const CLI::Validator aLevel(
    [](const std::string& text) {
        const std::string highest = std::to_string(Tev::LoggingWrapper::maxLevel);
        const bool isLevel = text.size() == 1 && text >= "0" && text <= highest;
        return isLevel ? "" : "\"" + text + "\" is not a whole number from 0 to " + highest;
    },
    "");

const CLI::Validator anOutput(
    [](const std::string& text) {
        return text == table || text == json ? "" : "\"" + text + "\" is neither table nor json";
    },
    "");

const CLI::Validator aCheckItem(
    [](const std::string& text) {
        return ComponentCheck::hasItem(text)
                   ? ""
                   : "there is no item " + text + "; the items are " + ComponentCheck::itemIds();
    },
    "");

void addOptions(CLI::App& app, Settings& settings, Words& words) {
    app.add_option("--node", words.node,
                   "The node: DIR/models, DIR/managed-objects.xml and, where it is there, "
                   "DIR/libtev_schema_populator.cfg")
        ->type_name("DIR")
        ->check(notEmpty);
    app.add_option("--models", settings.models, "The folder of the model files")->type_name("DIR")->check(notEmpty);
    app.add_option("--objects", settings.objects, "The managed objects of the rest of the node")
        ->type_name("FILE")
        ->check(notEmpty);
    app.add_option("--component", settings.components, "A component to load in place of the usual one; repeatable")
        ->type_name("FILE.so")
        ->check(notEmpty)
        ->allow_extra_args(false);
    app.add_option("--config", settings.configuration, "The component's configuration")
        ->type_name("FILE")
        ->check(notEmpty);
    app.add_option("--log-level", settings.logLevel, "How much is logged: 0 (nothing, the default) to 8 (everything)")
        ->type_name("N")
        ->check(aLevel);
    app.add_option("--log-file", settings.logFile, "Where to log to in place of standard error")
        ->type_name("FILE")
        ->check(notEmpty);
    app.add_option("--output", words.output, "How results are written; the default is table")
        ->type_name("table|json")
        ->check(anOutput);
}

CLI::App* addCommand(CLI::App& app, Settings& settings, const char* name, Settings::Command command,
                     const char* description) {
    CLI::App* const added = app.add_subcommand(name, description);
    added->group("Commands");
    added->callback([&settings, command] { settings.command = command; });
    return added;
}

void addExport(CLI::App& app, Settings& settings) {
    CLI::App* const added =
        addCommand(app, settings, "export", Settings::Command::Export, "Uploads the file of a model, or of every one");
    added->add_option("DN|SCHEMA-ID", settings.target, "The DN of an object, or a schema id; absent with --all");
    added->add_option("SFTP-URI", settings.uri,
                      "Where to: sftp://USER@HOST[:PORT]/PATH; a path that ends in / names a folder");
    CLI::Option* const all =
        added->add_flag("--all", settings.isEveryModel, "Every model, into the folder that the URI names");
    added->add_option("--jobs", settings.jobs, "How many models at a time; the default is 4")
        ->type_name("N")
        ->check(notEmpty)
        ->check(CLI::Range(1, 64).description(""))
        ->needs(all);
    CLI::Option* const fromInput = added->add_flag("--password-stdin", settings.isPasswordFromInput,
                                                   "Read the password from the first line of standard input");
    added
        ->add_option("--password-file", settings.passwordFile,
                     "Read it from the first line of a file; without either it is asked for on the terminal")
        ->type_name("FILE")
        ->check(notEmpty)
        ->excludes(fromInput);
}

void addCheck(CLI::App& app, Settings& settings) {
    CLI::App* const added =
        addCommand(app, settings, "check", Settings::Command::Check, "Tries a component against its contract");
    added->add_option("FILE.so", settings.checkedLibrary, "The component; the one that is loaded when absent")
        ->check(notEmpty);
    added->add_option("--class", settings.checkedClass, "The class to list and read; the routed one when absent")
        ->type_name("CLASS")
        ->check(notEmpty);
    added->add_option("--parent", settings.checkedParent, "What its instances stand under; absent for the route's")
        ->type_name("DN")
        ->check(notEmpty);
    added->add_option("--attribute", settings.attributes, "What to read of them; those of Schema are known; repeatable")
        ->type_name("NAME")
        ->check(notEmpty)
        ->allow_extra_args(false);
    added->add_option("--only", settings.onlyItems, "The item, or group of items, to try; repeatable")
        ->type_name("ID")
        ->check(aCheckItem)
        ->allow_extra_args(false);
    added->add_flag("--in-process", settings.isInProcess, "Try every item in this process, for a debugger");
    added->add_option("--time-limit", settings.timeLimit, "How long an item may take, in seconds; the default is 10")
        ->type_name("N")
        ->check(notEmpty)
        ->check(CLI::Range(1, 3600).description(""));
}

void addHelp(CLI::App& app, Settings& settings) {
    addCommand(app, settings, "help", Settings::Command::Help, "Shows the commands, or the usage of one")
        ->add_option("COMMAND", settings.target, "The command; all of them when absent");
}

/// What only the program is asked for.
void addShell(CLI::App& app, Settings& settings) {
    addCommand(app, settings, "shell", Settings::Command::Shell,
               "Reads commands, from a terminal or a script; the components are started once");
}

/// What only a line of the shell asks for.
void addLineCommand(CLI::App& app, Settings& settings) {
    addCommand(app, settings, "quit", Settings::Command::Quit, "Ends the shell, as Ctrl-D does")->alias("exit");
}

void addCommands(CLI::App& app, Settings& settings) {
    CLI::App* const list =
        addCommand(app, settings, "list", Settings::Command::List, "Every Schema instance with its attributes");
    list->add_option("--filter", settings.filter,
                     "Only those whose schema id matches, as in 'Transport*'; quoted, for the shell knows patterns too")
        ->type_name("GLOB")
        ->check(notEmpty);
    CLI::App* const get = addCommand(app, settings, "get", Settings::Command::Get, "One instance");
    get->add_option("DN|SCHEMA-ID", settings.target, "The DN of any object, or a schema id")->required();
    get->add_option("ATTRIBUTE", settings.attributes,
                    "What to show; all attributes when absent, which goes for Schema instances only")
        ->check(notEmpty);
    addExport(app, settings);
    addCheck(app, settings);
}

/// Files of the node stand in where none is named.
void applyNode(const std::string& node, Settings& settings) {
    const std::filesystem::path folder = node;
    if (settings.models.empty()) {
        settings.models = folder / "models";
    }
    if (settings.objects.empty()) {
        settings.objects = folder / "managed-objects.xml";
    }
    const std::filesystem::path configuration = folder / Settings::configurationName;
    // One that is there but cannot be used, such as a link to nothing, is not passed over: it is reported later.
    std::error_code ignored;
    const std::filesystem::file_type type = std::filesystem::symlink_status(configuration, ignored).type();
    if (settings.configuration.empty() && type != std::filesystem::file_type::not_found) {
        settings.configuration = configuration;
    }
}

[[noreturn]] void refuse(const std::string& reason) {
    throw Failure(ExitStatus::WrongUsage, reason);
}

/// What is wrong with the use of an option that takes one value. The parser tells the two cases apart by words only.
std::string misuse(const CLI::ArgumentMismatch& error) {
    const std::string what = error.what();
    const bool isMissing = what.find(" missing") != std::string::npos;
    return what.substr(0, what.find(':')) + (isMissing ? " stands without its value" : " stands more than once");
}

/// What helps with an argument that was taken for an option but may have been meant otherwise.
std::string hintFor(int argumentCount, const char* const* arguments) {
    for (int i = 1; i < argumentCount && arguments[i] != std::string("--"); ++i) {
        if (arguments[i][0] == '-' && arguments[i][1] != '-') {
            return "; what begins with - but is no option stands behind --";
        }
    }
    return "";
}

void verifyAttributes(const Settings& settings) {
    std::set<std::string> names;
    for (const std::string& name : settings.attributes) {
        if (!names.insert(name).second) {
            refuse("the attribute " + name + " is named twice");
        }
    }
    if (settings.hasDn() && settings.attributes.empty() && !SchemaClass::isClassOf(settings.target)) {
        refuse("the attributes to show of " + settings.target + " must be named, because it is no Schema instance");
    }
}

/// Other classes than Schema are served without models.
bool needsModels(const Settings& settings) {
    const bool isOther = settings.hasDn() && RouteTable({SchemaClass::route()}).ofDn(settings.target) == nullptr;
    return settings.command != Settings::Command::Check && !isOther;
}

/// Whether the URI has no path but "/", if any. One without an authority is for the component to judge.
bool namesNothing(const std::string& uri) {
    const std::size_t authority = uri.find("://");
    return authority != std::string::npos && uri.find('/', authority + 3) >= uri.size() - 1;
}

/// With --all the one argument is the URI, of a folder.
void arrangeExport(Settings& settings) {
    if (settings.isEveryModel) {
        if (!settings.uri.empty()) {
            refuse("with --all no model is named, so " + settings.target + " is one too many");
        }
        settings.uri = std::exchange(settings.target, "");
    }
    if (settings.uri.empty()) {
        refuse(settings.target.empty() && !settings.isEveryModel ? "DN|SCHEMA-ID is required" : "SFTP-URI is required");
    }
    // The path would end there, unseen.
    if (settings.uri.find_first_of("?#") != std::string::npos) {
        refuse("the URI has a query or a fragment; write %3F for ? and %23 for #");
    }
    if (namesNothing(settings.uri)) {
        refuse("the URI names neither a file nor a folder on the server, as sftp://USER@HOST/FOLDER/ does");
    }
    if (settings.isEveryModel && settings.uri.back() != '/') {
        settings.uri += '/';
    }
}

void verify(const Settings& settings) {
    if (settings.command == Settings::Command::Get) {
        verifyAttributes(settings);
    }
    if (needsModels(settings) && settings.models.empty()) {
        refuse("neither --node nor --models says where the models are");
    }
    const std::string name = std::filesystem::path(settings.configuration).filename();
    if (!settings.configuration.empty() && name != Settings::configurationName) {
        refuse("the file of --config must be named " + std::string(Settings::configurationName) + ", not " + name);
    }
}

/// What the help of a command shows below its options; a command stands behind `prefix`.
void addExamples(CLI::App& app, const std::string& prefix, const std::string& more) {
    const std::map<std::string, std::vector<std::string>> examples = {
        {"list", {"list", "list --filter 'Transport*'", "list --output json"}},
        {"get", {"get TransportModel", "get TransportModel version selectedModelOptions"}},
        {"export",
         {"export TransportModel sftp://operator@backup/models/",
          "export --all --jobs 8 sftp://operator@backup/models/"}},
        {"check", {"check", "check build/release/lib/libtev_schema_populator.so"}},
        {"shell", {"shell", "shell < commands.txt"}},
    };
    for (CLI::App* const command : app.get_subcommands({})) {
        const auto found = examples.find(command->get_name());
        std::string footer;
        if (found != examples.end()) {
            footer = "Examples:\n";
            for (const std::string& example : found->second) {
                footer += "  " + prefix + example + "\n";
            }
        }
        command->footer(footer + more);
    }
}

/// The parser of the program's arguments, or of a line.
class Parser {
public:
    Parser(bool isOfLine, const Screen& screen, Settings initial = {})
        : settings(std::move(initial)), app(isOfLine ? "" : aboutTheProgram, isOfLine ? "" : "tev-agent") {
        app.formatter(std::make_shared<HelpFormatter>(screen.width == 0 ? Screen::usualWidth : screen.width));
        app.require_subcommand(0, 1);  // that there is one is verified last, so that an unknown one is named
        app.get_formatter()->label("SUBCOMMAND", "COMMAND");
        app.fallthrough();  // the options may stand behind the command, too
        app.set_help_flag("-h,--help", "Show this help");
        addOptions(app, settings, words);
        addCommands(app, settings);
        if (isOfLine) {
            arrangeLine();
        } else {
            app.set_version_flag("--version", "tev-agent " TEV_VERSION, "Show the version");
            addShell(app, settings);
            addHelp(app, settings);
            addExamples(app, "tev-agent --node DIR ",
                        "The options of tev-agent (tev-agent --help) may stand here, too.");
        }
    }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    /// Settings that are not verified yet; complete when they hold information.
    void take(int argumentCount, const char* const* arguments) {
        try {
            app.parse(argumentCount, arguments);
        } catch (const CLI::Success& e) {
            app.require_subcommand(1);  // the usage shows it as required
            std::ostringstream text;
            app.exit(e, text, text);
            settings.information = text.str();
            return;
        } catch (const CLI::ArgumentMismatch& e) {
            refuse(misuse(e));
        } catch (const CLI::ExtrasError&) {
            refuse(unexpected(app.remaining(true).front()) + hint(argumentCount, arguments));
        } catch (const CLI::ParseError& e) {
            refuse(e.what() + hint(argumentCount, arguments));
        }
        if (app.get_subcommands().empty()) {
            refuse("no command is given");
        }
        settings.nodeOptions = nodeOptions();
    }

    /// Completes the settings.
    void finish() {
        settings.isConfigurationNamed = !settings.configuration.empty();
        if (!words.node.empty()) {
            applyNode(words.node, settings);
        }
        if (isOutputNamed()) {
            settings.output = words.output == json ? Settings::Output::Json : Settings::Output::Table;
        }
        if (settings.command == Settings::Command::Export) {
            arrangeExport(settings);
        }
        verify(settings);
    }

    bool isOutputNamed() const { return app.get_option("--output")->count() > 0; }

    Settings settings;
    Words words;
    CLI::App app;

private:
    static constexpr const char* aboutTheProgram =
        "Hosts the management components of a node and shows what they serve.";

    std::string hint(int argumentCount, const char* const* arguments) const {
        const bool takesAny = app.got_subcommand("get") || app.got_subcommand("export");
        return takesAny ? hintFor(argumentCount, arguments) : "";
    }

    /// What is wrong with the first argument that nothing takes.
    std::string unexpected(const std::string& argument) const {
        if (argument.front() == '-') {
            return "there is no option " + argument;
        }
        if (!app.get_subcommands().empty()) {
            return argument + " is one too many";
        }
        std::string names;
        for (const CLI::App* const command : app.get_subcommands({})) {
            names += (names.empty() ? "" : ", ") + command->get_name();
        }
        return "there is no command " + argument + "; the commands are " + names;
    }

    /// Options that hold for the whole shell are known, so that they can be refused, but not shown.
    void arrangeLine() {
        for (CLI::Option* const option : app.get_options()) {
            if (option != app.get_help_ptr() && option != app.get_option("--output")) {
                option->group("");
            }
        }
        addHelp(app, settings);
        addLineCommand(app, settings);
        addExamples(app, "", "");
        app.footer(
            "The node's files and the components are those of the time when the shell began.\n"
            "Words are quoted as in a shell; # begins a comment. help COMMAND shows examples.");
    }

    std::vector<std::string> nodeOptions() const {
        std::vector<std::string> given;
        for (const CLI::Option* const option : app.get_options()) {
            if (option != app.get_option("--output")) {
                for (const std::string& value : option->results()) {
                    given.push_back("--" + option->get_lnames().front() + "=" + value);
                }
            }
        }
        return given;
    }
};

/// Ends the sentence of a wrong usage with where to find the right one.
template <class Function>
Settings withHint(const char* hint, Function&& function) {
    try {
        return function();
    } catch (const Failure& e) {
        throw Failure(e.status(), std::string(e.what()) + hint);
    }
}

std::vector<std::string> commandsOf(const Parser& parser) {
    std::vector<std::string> names;
    for (const CLI::App* const command : parser.app.get_subcommands({})) {
        names.push_back(command->get_name());
        names.insert(names.end(), command->get_aliases().begin(), command->get_aliases().end());
    }
    return names;
}

/// What `help` shows, of the command that it names, if any; `parser` has parsed nothing.
std::string helpOf(Parser&& parser, const std::string& command) {
    const std::vector<std::string> known = commandsOf(parser);
    if (!command.empty() && std::find(known.begin(), known.end(), command) == known.end()) {
        refuse("there is no command " + command);
    }
    parser.app.require_subcommand(1);  // the usage shows it as required
    return command.empty() ? parser.app.help() : parser.app.get_subcommand(command)->help(parser.app.get_name());
}

}  // namespace

Settings CommandLine::parse(int argumentCount, const char* const* arguments, const Screen& screen) {
    return withHint(" (tev-agent --help shows the usage)", [&] {
        Parser parser(false, screen);
        parser.take(argumentCount, arguments);
        Settings& settings = parser.settings;
        if (settings.information.empty() && settings.command == Settings::Command::Help) {
            settings.information = helpOf(Parser(false, screen), settings.target);
        }
        if (settings.information.empty()) {
            parser.finish();
        }
        return settings;
    });
}

Settings CommandLine::parseLine(const std::vector<std::string>& words, const Settings& session, const Screen& screen) {
    return withHint(" (help shows the usage)", [&] {
        Parser parser(true, screen, session);
        std::vector<const char*> arguments = {""};
        for (const std::string& word : words) {
            arguments.push_back(word.c_str());
        }
        parser.take(static_cast<int>(arguments.size()), arguments.data());
        Settings& settings = parser.settings;
        if (!settings.information.empty()) {
            return settings;
        }
        if (!settings.nodeOptions.empty()) {
            const std::string& option = settings.nodeOptions.front();
            refuse(option.substr(0, option.find('=')) + " holds for the whole shell, and stands before its name");
        }
        if (settings.command == Settings::Command::Help) {
            settings.information = helpOf(Parser(true, screen), settings.target);
            return settings;
        }
        settings.arguments = session.nodeOptions;
        if (!parser.isOutputNamed()) {
            settings.arguments.push_back(std::string("--output=") +
                                         (session.output == Settings::Output::Json ? json : table));
        }
        settings.arguments.insert(settings.arguments.end(), words.begin(), words.end());
        parser.finish();
        return settings;
    });
}

std::vector<std::string> CommandLine::lineCommands() {
    return commandsOf(Parser(true, {}));
}

std::map<std::string, bool> CommandLine::lineOptions(const std::string& command) {
    const Parser parser(true, {});
    std::map<std::string, bool> options;
    const auto add = [&](const CLI::App& app) {
        for (const CLI::Option* const option : app.get_options()) {
            if (!option->get_positional() && !option->get_group().empty()) {
                options.emplace(option->get_name(), option->get_items_expected_max() > 0);
            }
        }
    };
    const std::vector<std::string> known = lineCommands();
    if (std::find(known.begin(), known.end(), command) != known.end()) {
        add(parser.app);
        add(*parser.app.get_subcommand(command));
    }
    return options;
}

}  // namespace TevAgent
