#include "Commands.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>

#include "ComponentCheck.h"
#include "Diagnostics.h"
#include "Failure.h"
#include "Interruption.h"
#include "JsonText.h"
#include "Operation.h"
#include "Password.h"
#include "SchemaClass.h"
#include "TableText.h"

namespace TevAgent {

namespace {

/// The library of the component that this agent is made for: beside the program, else the installed one.
std::string usualLibrary() {
    const std::string name = "libtev_schema_populator.so";
    // Where the system does not tell, there is nothing beside the program.
    std::error_code ignored;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", ignored);
    const std::filesystem::path beside = program.parent_path().parent_path() / "lib" / name;
    return std::filesystem::exists(beside, ignored) ? beside.string() : TEV_INSTALLED_LIBRARIES "/" + name;
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
        if (attribute.name == "version" && !attribute.values.empty() && !attribute.values.front().empty()) {
            return attribute.values.front();
        }
    }
    return "the one without a version";
}

/// Says which models have several versions, and which one is shown, where the instance could be read.
void sayRepeated(const std::set<std::string>& repeated, const std::map<std::string, std::string>& versions) {
    std::string models;
    for (const std::string& key : repeated) {
        const std::string& version = versions.at(key);
        models += (models.empty() ? "" : ", ") + key + (version.empty() ? "" : " (shown: " + version + ")");
    }
    if (!models.empty()) {
        Diagnostics::say("there are several versions of " + models);
    }
}

Password passwordFrom(const Settings& settings) {
    if (settings.isPasswordFromInput) {
        return Password::fromInput();
    }
    return settings.passwordFile.empty() ? Password::ask() : Password::fromFile(settings.passwordFile);
}

}  // namespace

Commands::Commands(const Settings& commandSettings, StandardOutput& resultOutput)
    : settings(commandSettings), output(resultOutput) {}

ExitStatus Commands::run() {
    Agent agent({settings.models, settings.objects, settings.configuration});
    if (settings.command == Settings::Command::Check) {
        return check(agent);
    }
    initialize(agent, librariesOf(settings));
    agent.start();
    switch (settings.command) {
        case Settings::Command::List:
            return list(agent);
        case Settings::Command::Get:
            return get(agent);
        default:
            return exportModels(agent);
    }
}

ExitStatus Commands::list(Agent& agent) {
    ExitStatus status = ExitStatus::Done;
    std::vector<Instance> instances;
    std::map<std::string, std::string> versions;  // shown, by schema id
    std::set<std::string> repeated;
    Operation operation(agent);
    for (const std::string& key : operation.reader().keys(agent.schemaParent(), SchemaClass::name)) {
        if (!versions.emplace(key, "").second) {
            repeated.insert(key);
            continue;
        }
        try {
            instances.push_back(operation.reader().read(agent.schemaDn(key), SchemaClass::attributes()));
            versions[key] = versionOf(instances.back());
        } catch (const Failure& e) {
            // One instance that cannot be read does not hide the others.
            Diagnostics::say(e.what());
            status = e.status();
        }
    }
    operation.commit();
    sayRepeated(repeated, versions);
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

ExitStatus Commands::exportModels(Agent& agent) {
    const std::vector<ExportRun::Export> wanted = wantedExports(agent);
    const Password password = passwordFrom(settings);
    const bool isTable = settings.output == Settings::Output::Table;
    const auto tell = [&](const ExportResult& result) {
        if (settings.isEveryModel) {
            output.write(isTable ? TableText::of(result) : "");
        } else if (result.isExported && !result.message.empty()) {
            Diagnostics::say(result.message);
        }
    };
    const std::vector<ExportResult> results = ExportRun(agent, settings.uri, password).run(wanted, settings.jobs, tell);
    const auto isExported = [](const ExportResult& result) { return result.isExported; };
    const bool isDone = results.size() == wanted.size() && std::all_of(results.begin(), results.end(), isExported);
    if (settings.isEveryModel) {
        output.write(isTable ? "" : JsonText::of(results));
    }
    if (!isDone && !settings.isEveryModel && !results.empty()) {
        Diagnostics::say("cannot export " + results.front().model + ": " + results.front().message);
    }
    if (!isDone) {
        Interruption::check();
    }
    return isDone ? ExitStatus::Done : ExitStatus::OperationFailed;
}

std::vector<ExportRun::Export> Commands::wantedExports(Agent& agent) const {
    std::vector<ExportRun::Export> wanted;
    Operation operation(agent);
    if (settings.isEveryModel) {
        std::set<std::string> seen;
        for (const std::string& key : operation.reader().keys(agent.schemaParent(), SchemaClass::name)) {
            if (seen.insert(key).second) {
                wanted.push_back({key, agent.schemaDn(key), agent.modelSize(key)});
            }
        }
    } else {
        const std::string dn = settings.hasDn() ? settings.target : agent.schemaDn(settings.target);
        const bool isSchema = SchemaClass::isClassOf(dn);
        const std::string id = dn.substr(dn.rfind('=') + 1);
        if (isSchema) {
            // Nobody is asked for a password in vain.
            operation.reader().read(dn, {SchemaClass::attributes().front()});
        }
        wanted.push_back({settings.target, dn, isSchema ? agent.modelSize(id) : std::nullopt});
    }
    operation.commit();
    return wanted;
}

ExitStatus Commands::check(Agent& agent) {
    std::vector<std::string> libraries = settings.components;
    libraries.push_back(settings.checkedLibrary);
    if (settings.checkedLibrary.empty()) {
        libraries = librariesOf(settings);
    }
    // The one to check comes last; the others are there for what it depends on.
    const std::string checked = libraries.back();
    libraries.pop_back();
    initialize(agent, libraries);
    std::vector<CheckResult> results;
    const bool isTable = settings.output == Settings::Output::Table;
    const bool isPassed = ComponentCheck(agent, checked).run([&](const CheckResult& result) {
        results.push_back(result);
        // A line at once: should the component bring the process down, the lines show where.
        output.write(isTable ? TableText::of(result) : "");
    });
    output.write(isTable ? "" : JsonText::of(results));
    return isPassed ? ExitStatus::Done : ExitStatus::OperationFailed;
}

void Commands::write(const std::vector<std::string>& attributes, const std::vector<Instance>& instances) {
    output.write(settings.output == Settings::Output::Json ? JsonText::of(instances)
                                                           : TableText::of(attributes, instances));
}

}  // namespace TevAgent
