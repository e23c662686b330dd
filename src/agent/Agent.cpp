#include "Agent.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "Diagnostics.h"
#include "Failure.h"
#include "ModelFolder.h"
#include "Portal.h"
#include "SchemaClass.h"
#include "TevConfiguration.h"
#include "TevException.h"
#include "ThreadContext.h"

namespace TevAgent {

namespace {

/// Where Schema instances stand when there are no managed objects to tell.
constexpr const char* usualSchemaParent = "ManagedElement=1,SystemFunctions=1,SysM=1";

/// What transfers may take where the configuration does not tell.
constexpr std::chrono::milliseconds usualTimeout(180000);

std::vector<Model> readModels(const std::string& folder) {
    if (folder.empty()) {
        return {};
    }
    ModelFolder content = ModelFolder::read(folder);
    for (const Problem& problem : content.problems()) {
        Diagnostics::say(problem.text());
    }
    return std::move(content).models();
}

/// The time-out of transfers, as the component takes it from its configuration. Components make do with their defaults
/// when the configuration cannot be read; the operator has to know.
std::chrono::milliseconds readTimeout(const std::string& file) {
    std::string text;
    try {
        Tev::TevConfiguration configuration;
        if (!file.empty()) {
            configuration.load(file);
            const auto components = configuration.getElementsByTagName(SchemaClass::route().component);
            const auto* const only = dynamic_cast<const Poco::XML::Element*>(components->item(0));
            text = components->length() == 1
                       ? Tev::TevConfiguration::getElementValue(configuration, only, "sftpTimeout")
                       : "";
        }
    } catch (const Tev::TevException& e) {
        Diagnostics::say(std::string(e.what()) + "; the defaults are used");
    }
    return text.empty() ? usualTimeout : std::chrono::milliseconds(std::atol(text.c_str()));
}

}  // namespace

Agent::Agent(const Inputs& agentInputs) : inputs(agentInputs) {
    try {
        repository = std::make_unique<ModelRepository>(readModels(inputs.models));
        if (!inputs.objects.empty()) {
            store = ObjectStore::load(inputs.objects, {SchemaClass::route()});
        }
    } catch (const Tev::TevException& e) {
        throw Failure(ExitStatus::NotStarted, e.what());
    }
    timeout = readTimeout(inputs.configuration);
    routerService = std::make_unique<Router>(store, portal, transactionService, routes());
    portal.offer(TransactionService::table()->base);
    portal.offer(ThreadContext::table()->base);
    portal.offer(*repository->repositoryTable());
    portal.offer(*repository->extensionTable());
    portal.offer(Router::table()->base);
    Tev::Portal::setAccessor(PortalService::accessor());
}

Agent::~Agent() {
    stop();
    while (!libraries.empty()) {
        libraries.pop_back();
    }
    Tev::Portal::setAccessor(nullptr);
}

ComponentLibrary& Agent::open(const std::string& path) {
    return *libraries.emplace_back(std::make_unique<ComponentLibrary>(path, portal));
}

std::string Agent::initialize(ComponentLibrary& library) {
    library.initialize(inputs.configuration.empty() ? nullptr : inputs.configuration.c_str());
    if (library.components().empty()) {
        throw Failure(ExitStatus::NotStarted,
                      "cannot use component library " + library.path() + ": it registered no component");
    }
    return library.components().front()->name();
}

void Agent::start() {
    portal.start();
}

TevReturnT Agent::stop() {
    return portal.stop();
}

std::vector<Route> Agent::routes() const {
    std::vector<Route> all = {SchemaClass::route()};
    all.insert(all.end(), store.routes().begin(), store.routes().end());
    return all;
}

std::string Agent::schemaParent() const {
    if (inputs.objects.empty()) {
        return usualSchemaParent;
    }
    if (const auto dn = store.firstInstance(SchemaClass::route().parent)) {
        return *dn;
    }
    throw Failure(ExitStatus::OperationFailed, inputs.objects +
                                                   " has no SysM object that schemas could stand under; it needs one "
                                                   "below ManagedElement and SystemFunctions");
}

std::string Agent::schemaDn(const std::string& schemaId) const {
    return schemaParent() + "," + SchemaClass::name + "=" + schemaId;
}

std::optional<std::uintmax_t> Agent::modelSize(const std::string& schemaId) const {
    const Model* const model = repository->firstNamed(schemaId);
    std::error_code error;
    const std::uintmax_t size = model == nullptr ? 0 : std::filesystem::file_size(model->file, error);
    return model == nullptr || error ? std::nullopt : std::optional(size);
}

}  // namespace TevAgent
