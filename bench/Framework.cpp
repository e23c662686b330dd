#include "Framework.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "DalMgmtSpiThreadContext.h"
#include "Model.h"
#include "ModelFolder.h"

namespace TevBench {

namespace {

Framework* current = nullptr;

BenchModel::Text orvaValue(const TevAgent::Model& model, const std::string& key) {
    const auto domain = model.domains.find("ORVA");
    if (domain == model.domains.end() || domain->second.count(key) == 0) {
        return std::nullopt;
    }
    return domain->second.at(key);
}

}  // namespace

/// The tables and the functions in them. The handle of a model is its index, also that of its general properties.
struct Framework::Tables {
    static void* getPortal(const char* version) { return std::strcmp(version, "3") == 0 ? &portal : nullptr; }

    static TevReturnT getInterface(const char*, const char* interfaceName, const char*, void** result) {
        *result = nullptr;
        for (DalMgmtSpiInterface_1* table :
             {&transactions.base, &threadContext.base, &repository.base, &extension.base}) {
            if (std::strcmp(table->interfaceName, interfaceName) == 0) {
                *result = table;
            }
        }
        return *result == nullptr ? TevReturnNotFound : TevReturnOk;
    }

    static void reserved() {}

    static TevReturnT registerComponent(DalMgmtSpiComponent_2* component) {
        current->registered = component;
        return TevReturnOk;
    }

    static TevReturnT unregisterComponent(DalMgmtSpiComponent_2*) {
        current->registered = nullptr;
        return TevReturnOk;
    }

    static TevReturnT registerParticipant(unsigned long, DalOamSpiTransactionalResource_2*) { return TevReturnOk; }

    static TevReturnT addMessage(std::int32_t, const char*) { return TevReturnOk; }

    static TevReturnT getFirstMom(DalOamSpiMrMomHandle_4T* mom) {
        *mom = 0;
        return current->modelsInOrder.empty() ? TevReturnNotFound : TevReturnOk;
    }

    static TevReturnT getNextMom(DalOamSpiMrMomHandle_4T mom, DalOamSpiMrMomHandle_4T* next) {
        *next = mom + 1;
        return *next < current->modelsInOrder.size() ? TevReturnOk : TevReturnNotFound;
    }

    static TevReturnT getMomGeneralProperties(DalOamSpiMrMomHandle_4T mom,
                                              DalOamSpiMrGeneralPropertiesHandle_4T* properties) {
        current->asked = &current->modelsInOrder[mom];
        *properties = mom;
        return TevReturnOk;
    }

    static TevReturnT getMomStringProperty(DalOamSpiMrMomHandle_4T mom, std::int32_t selector, const char** result) {
        const BenchModel& model = current->modelsInOrder[mom];
        const BenchModel::Text& text = selector == DalOamSpiMrMomVersion   ? model.version
                                       : selector == DalOamSpiMrMomRelease ? model.release
                                                                           : model.correction;
        *result = text ? text->c_str() : nullptr;
        return TevReturnOk;
    }

    static TevReturnT getMomFeatureNames(DalOamSpiMrMomHandle_4T mom, const char*** result) {
        const std::vector<std::string>& features = current->modelsInOrder[mom].features;
        const char** entry = *result = new const char*[features.size() + 1];
        for (const std::string& feature : features) {
            *entry++ = strdup(feature.c_str());
        }
        *entry = nullptr;
        return TevReturnOk;
    }

    static TevReturnT getGeneralStringProperty(DalOamSpiMrGeneralPropertiesHandle_4T properties, std::int32_t,
                                               const char** result) {
        *result = current->modelsInOrder[properties].name.c_str();
        return TevReturnOk;
    }

    static TevReturnT getGeneralDomainValue(DalOamSpiMrGeneralPropertiesHandle_4T properties, const char*,
                                            const char* key, const char** result) {
        const BenchModel& model = current->modelsInOrder[properties];
        const BenchModel::Text& text = std::strcmp(key, "orvaMomName") == 0      ? model.orvaName
                                       : std::strcmp(key, "orvaMomVersion") == 0 ? model.orvaVersion
                                       : std::strcmp(key, "orvaMomRelease") == 0 ? model.orvaRelease
                                                                                 : model.orvaCorrection;
        *result = text ? text->c_str() : nullptr;
        return text ? TevReturnOk : TevReturnNotFound;
    }

    /// Not looked up by name: it is asked for last of what there is to know about a model.
    static TevReturnT getMomFileName(const char*, const char*, const char** result) {
        *result = current->asked->file.c_str();
        return TevReturnOk;
    }

    static DalPortalAccessor portalAccessor;
    static DalPortal_3 portal;
    static DalOamSpiTransaction_2 transactions;
    static DalMgmtSpiThreadContext_2 threadContext;
    static const DalOamSpiMrRoot_4 repositoryRoot;
    static const DalOamSpiMrGeneralProperties_4 repositoryProperties;
    static const DalOamSpiMrMom_4 repositoryMom;
    static DalOamSpiModelRepository_4 repository;
    static DalOamSpiModelRepositoryExtension_1 extension;
};

DalPortalAccessor Framework::Tables::portalAccessor = {getPortal};
DalPortal_3 Framework::Tables::portal = {
    {"DalPortalService", "DalPortal", "3"}, getInterface, reserved, registerComponent, unregisterComponent};
DalOamSpiTransaction_2 Framework::Tables::transactions = {{"DalOamSpiTransactionService", "DalOamSpiTransaction", "2"},
                                                          registerParticipant};
DalMgmtSpiThreadContext_2 Framework::Tables::threadContext = {
    {"DalMgmtSpiThreadContextService", "DalMgmtSpiThreadContext", "2"}, addMessage};
const DalOamSpiMrRoot_4 Framework::Tables::repositoryRoot = {getFirstMom};
const DalOamSpiMrGeneralProperties_4 Framework::Tables::repositoryProperties = {getGeneralStringProperty, reserved,
                                                                                reserved, getGeneralDomainValue};
const DalOamSpiMrMom_4 Framework::Tables::repositoryMom = {
    getMomGeneralProperties, getMomStringProperty, reserved, reserved, getMomFeatureNames, getNextMom};
DalOamSpiModelRepository_4 Framework::Tables::repository = {
    {"DalOamSpiModelRepositoryService", "DalOamSpiModelRepository", "4"},
    &repositoryRoot,
    &repositoryProperties,
    &repositoryMom};
DalOamSpiModelRepositoryExtension_1 Framework::Tables::extension = {
    {"DalOamSpiModelRepositoryService", "DalOamSpiModelRepositoryExtension", "1"}, getMomFileName};

Framework::Framework(std::vector<BenchModel> modelList) : modelsInOrder(std::move(modelList)) {
    if (current != nullptr) {
        throw std::logic_error("there is a framework already");
    }
    current = this;
}

Framework::~Framework() {
    current = nullptr;
}

std::vector<BenchModel> Framework::models(std::size_t count) {
    const std::vector<TevAgent::Model> examples = TevAgent::ModelFolder::read(EXAMPLE_NODE "/models").models();
    std::vector<BenchModel> list;
    for (std::size_t i = 0; i < count; ++i) {
        const TevAgent::Model& example = examples.at(i % examples.size());
        const std::string name = example.name + std::to_string(i);
        list.push_back({name, example.version, example.release, example.correction, orvaValue(example, "orvaMomName"),
                        orvaValue(example, "orvaMomVersion"), orvaValue(example, "orvaMomRelease"),
                        orvaValue(example, "orvaMomCorrection"), example.features, "/var/lib/models/" + name + ".xml"});
    }
    if (!list.empty() && list.front().orvaVersion && list.front().orvaRelease) {
        throw std::logic_error("the first model of the example node has a base model version");
    }
    return list;
}

DalPortalAccessor& Framework::accessor() const {
    return Tables::portalAccessor;
}

DalOamSpiTransaction_2& Framework::transactionService() const {
    return Tables::transactions;
}

DalOamSpiModelRepository_4& Framework::repository() const {
    return Tables::repository;
}

DalOamSpiModelRepositoryExtension_1& Framework::extension() const {
    return Tables::extension;
}

}  // namespace TevBench
