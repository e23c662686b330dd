#include "Commands.h"

#include <fnmatch.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "ComponentCheck.h"
#include "Diagnostics.h"
#include "ExportUri.h"
#include "Failure.h"
#include "Interruption.h"
#include "ItemProcess.h"
#include "JsonText.h"
#include "Operation.h"
#include "Password.h"
#include "SchemaClass.h"
#include "Shell.h"
#include "TableText.h"
#include "Text.h"

namespace TevAgent {

namespace {

constexpr const char* versionAttribute = "version";

/// The library of the component that this agent is made for: beside the program, as it was built or as it was
/// installed, else the one where this build installs it.
std::string usualLibrary() {
    const std::string name = "libtev_schema_populator.so";
    // Where the system does not tell, there is nothing beside the program.
    std::error_code ignored;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", ignored);
    for (const char* folder : {"lib", TEV_PLUGIN_FOLDER}) {
        const std::filesystem::path beside = program.parent_path().parent_path() / folder / name;
        if (std::filesystem::exists(beside, ignored)) {
            return beside;
        }
    }
    return TEV_INSTALLED_LIBRARIES "/" + name;
}

std::vector<std::string> librariesOf(const Settings& settings) {
    return settings.components.empty() ? std::vector<std::string>{usualLibrary()} : settings.components;
}

void initialize(Agent& agent, const std::vector<std::string>& libraries) {
    for (const std::string& library : libraries) {
        agent.initialize(agent.open(library));
    }
}

/// Which version of its model an instance shows, as a sentence names it.
std::string versionOf(const Instance& instance) {
    for (const Instance::Attribute& attribute : instance.attributes) {
        if (attribute.name == versionAttribute && !attribute.values.empty() && !attribute.values.front().empty()) {
            return attribute.values.front();
        }
    }
    return "the one without a version";
}

/// What a component lists, where a model with several versions stands that often.
struct Listing {
    explicit Listing(const std::vector<std::string>& keys) {
        std::set<std::string> seen;
        for (const std::string& key : keys) {
            if (seen.insert(key).second) {
                ids.push_back(key);
            } else {
                repeated.emplace(key, "");
            }
        }
    }

    std::vector<std::string> ids;                 ///< each once
    std::map<std::string, std::string> repeated;  ///< ids that stood there several times, for the version that counts
};

/// The keys that match the shell pattern `filter`; all of them without one.
std::vector<std::string> matching(std::vector<std::string> keys, const std::string& filter) {
    const auto isOther = [&](const std::string& key) { return fnmatch(filter.c_str(), key.c_str(), 0) != 0; };
    if (!filter.empty()) {
        keys.erase(std::remove_if(keys.begin(), keys.end(), isOther), keys.end());
    }
    return keys;
}

/// Says which models have several versions, and which one is shown or chosen, as `verb` has it, where it is known.
void sayRepeated(const std::map<std::string, std::string>& repeated, const std::string& verb) {
    std::string models;
    for (const auto& [key, version] : repeated) {
        models += (models.empty() ? "" : ", ") + key + (version.empty() ? "" : " (" + verb + ": " + version + ")");
    }
    if (!models.empty()) {
        Diagnostics::say("there are several versions of " + models);
    }
}

/// Says which versions are exported of the models with several, `repeated`, whose instances stand under `parentDn`.
void sayChosen(const ObjectReader& reader, const std::string& parentDn, std::map<std::string, std::string> repeated) {
    for (auto& [key, version] : repeated) {
        try {
            version = versionOf(reader.read(parentDn + "," + SchemaClass::name + "=" + key, {versionAttribute}));
        } catch (const Failure&) {
            // What hinders the reading need not hinder the export.
        }
    }
    sayRepeated(repeated, "chosen");
}

/// The password for an export of `dn`. Nobody is asked for one that the component would not use.
Password passwordFrom(const Settings& settings, const std::string& dn) {
    if (settings.isPasswordFromInput) {
        return Password::fromInput();
    }
    if (!settings.passwordFile.empty()) {
        return Password::fromFile(settings.passwordFile);
    }
    const ExportUri uri(settings.uri);
    if (SchemaClass::isClassOf(dn) && !uri.isSftp()) {
        throw Failure(ExitStatus::WrongUsage, "models are sent to sftp://USER@HOST[:PORT]/PATH only; correct the URI");
    }
    return Password::ask(uri.account());
}

}  // namespace

Commands::Commands(const Settings& commandSettings, StandardOutput& resultOutput)
    : settings(commandSettings), output(resultOutput) {}

ExitStatus Commands::run() {
    if (settings.command == Settings::Command::Check) {
        return check();
    }
    Agent agent({settings.models, settings.objects, settings.configuration});
    initialize(agent, librariesOf(settings));
    agent.start();
    return settings.command == Settings::Command::Shell ? Shell(agent, settings, output).run() : carryOut(agent);
}

ExitStatus Commands::carryOut(Agent& agent) {
    switch (settings.command) {
        case Settings::Command::List:
            return list(agent);
        case Settings::Command::Get:
            return get(agent);
        case Settings::Command::Export:
            return settings.isEveryModel ? exportEvery(agent) : exportOne(agent);
        case Settings::Command::Check:
        case Settings::Command::Shell:
        case Settings::Command::Help:
        case Settings::Command::Quit:
            break;
    }
    throw std::logic_error("a command without an agent was to be carried out in one");
}

ExitStatus Commands::list(Agent& agent) {
    ExitStatus status = ExitStatus::Done;
    std::vector<Instance> instances;
    Operation operation(agent);
    Listing listing(matching(operation.reader().keys(agent.schemaParent(), SchemaClass::name), settings.filter));
    if (listing.ids.empty() && !settings.filter.empty()) {
        Diagnostics::say("no schema id matches " + Text::quoted(settings.filter) + "; without --filter all are shown");
    }
    for (const std::string& key : listing.ids) {
        try {
            instances.push_back(operation.reader().read(agent.schemaDn(key), SchemaClass::attributes()));
            if (listing.repeated.count(key) != 0) {
                listing.repeated[key] = versionOf(instances.back());
            }
        } catch (const Failure& e) {
            // One instance that cannot be read does not hide the others.
            Diagnostics::say(e.what());
            status = e.status();
        }
    }
    operation.commit();
    sayRepeated(listing.repeated, "shown");
    write(SchemaClass::attributes(), instances);
    return status;
}

ExitStatus Commands::get(Agent& agent) {
    const std::string dn = settings.hasDn() ? settings.target : agent.schemaDn(settings.target);
    const std::vector<std::string>& attributes =
        settings.attributes.empty() ? SchemaClass::attributes() : settings.attributes;
    Operation operation(agent);
    const Instance instance = operation.reader().read(dn, attributes);
    operation.commit();
    write(attributes, {instance});
    return ExitStatus::Done;
}

ExitStatus Commands::exportOne(Agent& agent) {
    const ExportRun::Export wanted = namedExport(agent);
    if (settings.output == Settings::Output::Json) {
        return exportAndTell(agent, {wanted});
    }
    const Password password = passwordFrom(settings, wanted.dn);
    const auto tell = [](const ExportResult&) {};
    const ExportResult result = ExportRun(agent, settings.uri, password).run({wanted}, 1, tell).front();
    if (!result.isExported) {
        Diagnostics::say("cannot export " + result.model + ": " + result.message);
        return Interruption::isRequested() ? ExitStatus::Interrupted : ExitStatus::OperationFailed;
    }
    if (!result.message.empty()) {
        Diagnostics::say(result.message);
    }
    return ExitStatus::Done;
}

ExportRun::Export Commands::namedExport(Agent& agent) const {
    const std::string dn = settings.hasDn() ? settings.target : agent.schemaDn(settings.target);
    const std::string routedClass = agent.router().routedClassOf(dn);
    const bool isSchema = SchemaClass::isClassOf(dn);
    if (!isSchema && (routedClass.empty() || routedClass == SchemaClass::name)) {
        throw Failure(ExitStatus::OperationFailed,
                      dn + " is no Schema instance, and has no file to export; list shows those that have one");
    }
    if (!isSchema) {
        return {dn, dn, std::nullopt};
    }
    const std::string parentDn = dn.substr(0, dn.rfind(','));
    const std::string id = dn.substr(dn.rfind('=') + 1);
    Operation operation(agent);
    // Nobody is asked for a password in vain.
    operation.reader().read(dn, {SchemaClass::attributes().front()});
    if (Listing(operation.reader().keys(parentDn, SchemaClass::name)).repeated.count(id) != 0) {
        sayChosen(operation.reader(), parentDn, {{id, ""}});
    }
    operation.commit();
    return {settings.target, dn, agent.modelSize(id)};
}

ExitStatus Commands::exportEvery(Agent& agent) {
    const std::vector<ExportRun::Export> wanted = everyExport(agent);
    if (wanted.empty()) {
        Diagnostics::say("there is no model to export; files of models belong into " + settings.models);
        output.write(settings.output == Settings::Output::Table ? "" : JsonText::of(std::vector<ExportResult>()));
        return ExitStatus::Done;
    }
    return exportAndTell(agent, wanted);
}

ExitStatus Commands::exportAndTell(Agent& agent, const std::vector<ExportRun::Export>& wanted) {
    const bool isTable = settings.output == Settings::Output::Table;
    const Password password = passwordFrom(settings, wanted.front().dn);
    std::optional<Failure> lost;
    const auto write = [&](const std::string& text) {
        try {
            output.write(lost ? "" : text);
        } catch (const Failure& e) {
            // The exports go on: that nobody reads of them is no reason to leave some undone.
            lost = e;
        }
    };
    const auto tell = [&](const ExportResult& result) { write(isTable ? TableText::of(result, output.screen()) : ""); };
    const std::vector<ExportResult> results = ExportRun(agent, settings.uri, password).run(wanted, settings.jobs, tell);
    write(isTable ? TableText::summaryOf(results) : JsonText::of(results));
    const auto isExported = [](const ExportResult& result) { return result.isExported; };
    const bool isDone = std::all_of(results.begin(), results.end(), isExported);
    if (lost && (isDone || lost->status() != ExitStatus::ReaderGone)) {
        throw Failure(*lost);
    }
    if (isDone) {
        return ExitStatus::Done;
    }
    Interruption::check();
    if (lost) {
        Diagnostics::say("not every model was exported, and nobody reads which");
    }
    return ExitStatus::OperationFailed;
}

std::vector<ExportRun::Export> Commands::everyExport(Agent& agent) {
    Operation operation(agent);
    const Listing listing(operation.reader().keys(agent.schemaParent(), SchemaClass::name));
    sayChosen(operation.reader(), agent.schemaParent(), listing.repeated);
    operation.commit();
    std::vector<ExportRun::Export> wanted;
    for (const std::string& id : listing.ids) {
        wanted.push_back({id, agent.schemaDn(id), agent.modelSize(id)});
    }
    return wanted;
}

CheckSubject Commands::checkSubject() const {
    // The one to check comes last; the others are there for what it depends on.
    std::vector<std::string> libraries = settings.components;
    libraries.push_back(settings.checkedLibrary);
    if (settings.checkedLibrary.empty()) {
        libraries = librariesOf(settings);
    }
    const std::string checked = libraries.back();
    libraries.pop_back();
    return {checked,
            libraries,
            settings.configuration,
            settings.objects,
            settings.checkedClass,
            settings.checkedParent,
            settings.attributes};
}

std::vector<std::string> Commands::checkArguments(const CheckSubject& subject) const {
    std::vector<std::string> words = {"--output", "json"};
    const auto add = [&words](const char* option, const std::string& value) {
        if (!value.empty()) {
            words.insert(words.end(), {option, value});
        }
    };
    for (const std::string& library : subject.others) {
        add("--component", library);
    }
    add("--config", subject.configuration);
    add("--objects", subject.objects);
    add("--log-level", settings.logLevel ? std::to_string(*settings.logLevel) : "");
    add("--log-file", settings.logFile);
    words.insert(words.end(), {"check", "--in-process"});
    add("--class", subject.className);
    add("--parent", subject.parent);
    for (const std::string& attribute : subject.attributes) {
        add("--attribute", attribute);
    }
    words.push_back(subject.library);
    return words;
}

ExitStatus Commands::check() {
    const CheckSubject subject = checkSubject();
    const std::vector<CheckItem> items = ComponentCheck::itemsNamed(settings.onlyItems);
    const bool isTable = settings.output == Settings::Output::Table;
    const auto tell = [&](const CheckResult& result) {
        output.write(isTable ? TableText::of(result, output.screen()) : "");
    };
    std::vector<CheckResult> results;
    if (settings.isInProcess) {
        results = ComponentCheck::runHere(items, subject, tell);
    } else {
        const ItemProcess process(checkArguments(subject), std::chrono::seconds(settings.timeLimit));
        const auto attempt = [&process](const CheckItem& item) { return process.attempt(item); };
        results = ComponentCheck::run(items, std::max(1U, std::thread::hardware_concurrency()), attempt, tell);
    }
    output.write(isTable ? TableText::summaryOf(results) : JsonText::of(results));
    const bool isBad =
        std::any_of(results.begin(), results.end(), [](const CheckResult& result) { return result.isBad(); });
    return isBad ? ExitStatus::OperationFailed : ExitStatus::Done;
}

void Commands::write(const std::vector<std::string>& attributes, const std::vector<Instance>& instances) {
    output.write(settings.output == Settings::Output::Json ? JsonText::of(instances)
                                                           : TableText::of(attributes, instances, output.screen()));
}

}  // namespace TevAgent
