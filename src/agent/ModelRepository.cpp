#include "ModelRepository.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

namespace TevAgent {

namespace {

constexpr const char* componentName = "DalOamSpiModelRepositoryService";

// A handle is its kind's base plus the model's place, so one kind never passes for the other, nor a small number or a
// pointer for a handle.
constexpr std::uint64_t momBase = 0xa30d000000000000U;
constexpr std::uint64_t propertiesBase = 0xa30e000000000000U;

std::atomic<const ModelRepository*> current{nullptr};

const Model* at(const std::vector<Model>& models, std::uint64_t place) {
    return place < models.size() ? &models[static_cast<std::size_t>(place)] : nullptr;
}

const char* textOrNull(const std::optional<std::string>& text) {
    return text ? text->c_str() : nullptr;
}

const std::string* domainValue(const Model& model, std::string_view domain, std::string_view key) {
    const auto properties = model.domains.find(domain);
    if (properties == model.domains.end()) {
        return nullptr;
    }
    const auto property = properties->second.find(key);
    return property == properties->second.end() ? nullptr : &property->second;
}

/// A copy of `texts` as `getMomFeatureNames` gives it away, or null when memory runs out.
const char** copyForCaller(const std::vector<std::string>& texts) {
    const char** copy = new (std::nothrow) const char*[texts.size() + 1];
    if (copy == nullptr) {
        return nullptr;
    }
    const char** entry = copy;
    for (const std::string& text : texts) {
        *entry = strdup(text.c_str());
        if (*entry == nullptr) {
            while (entry != copy) {
                std::free(const_cast<char*>(*--entry));
            }
            delete[] copy;
            return nullptr;
        }
        ++entry;
    }
    *entry = nullptr;
    return copy;
}

}  // namespace

/// The C side. Nothing here throws.
struct ModelRepository::Tables {
    static const Model* modelOf(DalOamSpiMrMomHandle_4T mom) {
        const ModelRepository* repository = current;
        return repository == nullptr ? nullptr : repository->find(mom);
    }

    static const Model* modelOfProperties(DalOamSpiMrGeneralPropertiesHandle_4T properties) {
        const ModelRepository* repository = current;
        return repository == nullptr ? nullptr : repository->findByProperties(properties);
    }

    static TevReturnT getFirstMom(DalOamSpiMrMomHandle_4T* mom) {
        if (mom == nullptr) {
            return TevReturnInvalidArgument;
        }
        if (modelOf(momBase) == nullptr) {
            return TevReturnNotFound;
        }
        *mom = momBase;
        return TevReturnOk;
    }

    static TevReturnT getNextMom(DalOamSpiMrMomHandle_4T mom, DalOamSpiMrMomHandle_4T* next) {
        if (next == nullptr) {
            return TevReturnInvalidArgument;
        }
        if (modelOf(mom) == nullptr || modelOf(mom + 1) == nullptr) {
            return TevReturnNotFound;
        }
        *next = mom + 1;
        return TevReturnOk;
    }

    static TevReturnT getMomGeneralProperties(DalOamSpiMrMomHandle_4T mom,
                                              DalOamSpiMrGeneralPropertiesHandle_4T* properties) {
        if (properties == nullptr) {
            return TevReturnInvalidArgument;
        }
        if (modelOf(mom) == nullptr) {
            return TevReturnNotFound;
        }
        *properties = mom - momBase + propertiesBase;
        return TevReturnOk;
    }

    static TevReturnT getMomStringProperty(DalOamSpiMrMomHandle_4T mom, std::int32_t selector, const char** result) {
        if (result == nullptr) {
            return TevReturnInvalidArgument;
        }
        *result = nullptr;
        const Model* model = modelOf(mom);
        if (model == nullptr) {
            return TevReturnNotFound;
        }
        switch (selector) {
            case DalOamSpiMrMomVersion:
                *result = textOrNull(model->version);
                return TevReturnOk;
            case DalOamSpiMrMomRelease:
                *result = textOrNull(model->release);
                return TevReturnOk;
            case DalOamSpiMrMomCorrection:
                *result = textOrNull(model->correction);
                return TevReturnOk;
            default:
                return TevReturnNotFound;
        }
    }

    /// Also a model without features gives a list: a null one would leave the caller with that of the model before.
    static TevReturnT getMomFeatureNames(DalOamSpiMrMomHandle_4T mom, const char*** result) {
        if (result == nullptr) {
            return TevReturnInvalidArgument;
        }
        *result = nullptr;
        const Model* model = modelOf(mom);
        if (model == nullptr) {
            return TevReturnNotFound;
        }
        *result = copyForCaller(model->features);
        return *result == nullptr ? TevReturnNoMemory : TevReturnOk;
    }

    static TevReturnT getGeneralStringProperty(DalOamSpiMrGeneralPropertiesHandle_4T properties, std::int32_t selector,
                                               const char** result) {
        if (result == nullptr) {
            return TevReturnInvalidArgument;
        }
        *result = nullptr;
        const Model* model = modelOfProperties(properties);
        if (model == nullptr || selector != DalOamSpiMrGeneralName) {
            return TevReturnNotFound;
        }
        *result = model->name.c_str();
        return TevReturnOk;
    }

    static TevReturnT getGeneralDomainValue(DalOamSpiMrGeneralPropertiesHandle_4T properties, const char* domain,
                                            const char* key, const char** result) {
        if (result == nullptr) {
            return TevReturnInvalidArgument;
        }
        *result = nullptr;
        if (domain == nullptr || key == nullptr) {
            return TevReturnInvalidArgument;
        }
        const Model* model = modelOfProperties(properties);
        const std::string* value = model == nullptr ? nullptr : domainValue(*model, domain, key);
        if (value == nullptr) {
            return TevReturnNotFound;
        }
        *result = value->c_str();
        return TevReturnOk;
    }

    static TevReturnT getMomFileName(const char* momName, const char* momVersion, const char** result) {
        if (result == nullptr) {
            return TevReturnInvalidArgument;
        }
        *result = nullptr;
        if (momName == nullptr) {
            return TevReturnInvalidArgument;
        }
        const ModelRepository* repository = current;
        const auto version = momVersion == nullptr ? std::nullopt : std::optional<std::string_view>(momVersion);
        const Model* model = repository == nullptr ? nullptr : repository->find(momName, version);
        if (model == nullptr) {
            return TevReturnNotFound;
        }
        *result = model->file.c_str();
        return TevReturnOk;
    }

    static void reserved() {}

    static const DalOamSpiMrRoot_4 rootTable;
    static const DalOamSpiMrGeneralProperties_4 propertiesTable;
    static const DalOamSpiMrMom_4 momTable;
    static DalOamSpiModelRepository_4 repositoryTable;
    static DalOamSpiModelRepositoryExtension_1 extensionTable;
};

const DalOamSpiMrRoot_4 ModelRepository::Tables::rootTable = {getFirstMom};
const DalOamSpiMrGeneralProperties_4 ModelRepository::Tables::propertiesTable = {getGeneralStringProperty, reserved,
                                                                                 reserved, getGeneralDomainValue};
const DalOamSpiMrMom_4 ModelRepository::Tables::momTable = {
    getMomGeneralProperties, getMomStringProperty, reserved, reserved, getMomFeatureNames, getNextMom};
DalOamSpiModelRepository_4 ModelRepository::Tables::repositoryTable = {
    {componentName, "DalOamSpiModelRepository", "4"}, &rootTable, &propertiesTable, &momTable};
DalOamSpiModelRepositoryExtension_1 ModelRepository::Tables::extensionTable = {
    {componentName, "DalOamSpiModelRepositoryExtension", "1"}, getMomFileName};

ModelRepository::ModelRepository(std::vector<Model> modelList) : models(std::move(modelList)) {
    for (const Model& model : models) {
        byIdentity.emplace(std::pair(std::string_view(model.name), std::optional<std::string_view>(model.version)),
                           &model);
    }
    const ModelRepository* none = nullptr;
    if (!current.compare_exchange_strong(none, this)) {
        throw std::logic_error("the process has a model repository already");
    }
}

ModelRepository::~ModelRepository() {
    current = nullptr;
}

const Model* ModelRepository::firstNamed(std::string_view name) const {
    const auto found =
        std::find_if(models.begin(), models.end(), [name](const Model& model) { return model.name == name; });
    return found == models.end() ? nullptr : &*found;
}

DalMgmtSpiInterface_1* ModelRepository::repositoryTable() {
    return &Tables::repositoryTable.base;
}

DalMgmtSpiInterface_1* ModelRepository::extensionTable() {
    return &Tables::extensionTable.base;
}

const Model* ModelRepository::find(DalOamSpiMrMomHandle_4T mom) const {
    return at(models, mom - momBase);
}

const Model* ModelRepository::findByProperties(DalOamSpiMrGeneralPropertiesHandle_4T properties) const {
    return at(models, properties - propertiesBase);
}

const Model* ModelRepository::find(std::string_view name, std::optional<std::string_view> version) const {
    const auto found = byIdentity.find(std::pair(name, version));
    return found == byIdentity.end() ? nullptr : found->second;
}

}  // namespace TevAgent
