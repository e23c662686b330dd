#include "FakeHost.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace TevTest {

namespace {

FakeHost* current = nullptr;

// Handles are not addresses or plain indices, so that a component that mixes them up is found out.
constexpr std::uint64_t momBase = 0x100000000000;
constexpr std::uint64_t propertiesBase = 0x200000000000;

// What a failing call leaves in its output, for a component that looks there all the same.
constexpr const char* rubbish = "rubbish";

using Answer = std::optional<TevReturnT>;

/// How a call ends that was told its code: a failing one leaves `text` in its output.
template <class Result>
TevReturnT answered(TevReturnT code, Result* result, Result text) {
    if (code != TevReturnOk) {
        *result = text;
    }
    return code;
}

std::string shown(const char* text) {
    return text == nullptr ? "null" : text;
}

}  // namespace

/// The tables and the functions in them.
struct FakeHost::Tables {
    static void* getPortal(const char* version) {
        const bool refused = current->note("getPortal", version).has_value();
        return !refused && current->hasPortal && std::strcmp(version, "3") == 0 ? &portal : nullptr;
    }

    static TevReturnT getInterface(const char* componentName, const char* interfaceName, const char* version,
                                   void** result) {
        if (const Answer answer = current->note(
                "getInterface", shown(componentName) + "," + shown(interfaceName) + "," + shown(version))) {
            return answered<void*>(*answer, result, nullptr);
        }
        *result = nullptr;
        for (DalMgmtSpiInterface_1* table : {&transaction.base, &threadContexts[current->threadContextInUse].base,
                                             &repository.base, &extension.base, &router.base}) {
            if (std::strcmp(table->componentName, componentName) == 0 &&
                std::strcmp(table->interfaceName, interfaceName) == 0 &&
                std::strcmp(table->interfaceVersion, version) == 0 && current->withdrawn.count(interfaceName) == 0) {
                *result = table;
                return TevReturnOk;
            }
        }
        return TevReturnNotFound;
    }

    static TevReturnT registerComponent(DalMgmtSpiComponent_2* component) {
        if (const Answer answer = current->note("registerComponent", component->base.componentName)) {
            return *answer;
        }
        if (component->interfaceArray == nullptr || component->dependencyArray == nullptr ||
            component->extraArray == nullptr) {
            return TevReturnInvalidArgument;
        }
        current->registered = component;
        return TevReturnOk;
    }

    static TevReturnT unregisterComponent(DalMgmtSpiComponent_2* component) {
        if (const Answer answer = current->note("unregisterComponent", component->base.componentName)) {
            return *answer;
        }
        current->registered = nullptr;
        return TevReturnOk;
    }

    static TevReturnT registerParticipant(unsigned long txHandle, DalOamSpiTransactionalResource_2* participant) {
        if (const Answer answer = current->note("registerParticipant", std::to_string(txHandle))) {
            return *answer;
        }
        const std::lock_guard<std::mutex> lock(current->mutex);
        auto& participants = current->joined[txHandle];
        if (std::find(participants.begin(), participants.end(), participant) == participants.end()) {
            participants.push_back(participant);
        }
        return TevReturnOk;
    }

    template <unsigned int threadContext>
    static TevReturnT addMessage(std::int32_t category, const char* text) {
        if (const Answer answer = current->note("addMessage", std::to_string(category) + "," + shown(text))) {
            return *answer;
        }
        const std::lock_guard<std::mutex> lock(current->mutex);
        current->posted[threadContext].emplace_back(category, text);
        return TevReturnOk;
    }

    static TevReturnT getFirstMom(DalOamSpiMrMomHandle_4T* mom) {
        if (const Answer answer = current->note("getFirstMom")) {
            return *answer;
        }
        *mom = momBase;
        return current->models.empty() ? TevReturnNotFound : TevReturnOk;
    }

    static TevReturnT getNextMom(DalOamSpiMrMomHandle_4T mom, DalOamSpiMrMomHandle_4T* next) {
        if (const Answer answer = current->note("getNextMom", current->model(mom - momBase).name)) {
            return *answer;
        }
        *next = mom + 1;
        return *next - momBase < current->models.size() ? TevReturnOk : TevReturnNotFound;
    }

    static TevReturnT getMomGeneralProperties(DalOamSpiMrMomHandle_4T mom,
                                              DalOamSpiMrGeneralPropertiesHandle_4T* properties) {
        if (const Answer answer = current->note("getMomGeneralProperties", current->model(mom - momBase).name)) {
            return *answer;
        }
        *properties = mom - momBase + propertiesBase;
        return TevReturnOk;
    }

    static TevReturnT getMomStringProperty(DalOamSpiMrMomHandle_4T mom, std::int32_t selector, const char** result) {
        const FakeModel& model = current->model(mom - momBase);
        if (const Answer answer = current->note("getMomStringProperty", model.name + "," + std::to_string(selector))) {
            return answered(*answer, result, rubbish);
        }
        const std::optional<std::string>* text = selector == DalOamSpiMrMomVersion      ? &model.version
                                                 : selector == DalOamSpiMrMomRelease    ? &model.release
                                                 : selector == DalOamSpiMrMomCorrection ? &model.correction
                                                                                        : nullptr;
        if (text == nullptr) {
            *result = rubbish;
            return TevReturnInvalidArgument;
        }
        *result = text->has_value() ? text->value().c_str() : nullptr;
        return TevReturnOk;
    }

    static TevReturnT getMomFeatureNames(DalOamSpiMrMomHandle_4T mom, const char*** result) {
        const FakeModel& model = current->model(mom - momBase);
        if (const Answer answer = current->note("getMomFeatureNames", model.name)) {
            return *answer;
        }
        *result = nullptr;
        if (model.features) {
            *result = new const char*[model.features->size() + 1];
            const char** entry = *result;
            for (const std::string& feature : *model.features) {
                *entry++ = strdup(feature.c_str());
            }
            *entry = nullptr;
        }
        return TevReturnOk;
    }

    static TevReturnT getGeneralStringProperty(DalOamSpiMrGeneralPropertiesHandle_4T properties, std::int32_t selector,
                                               const char** result) {
        const FakeModel& model = current->model(properties - propertiesBase);
        if (const Answer answer =
                current->note("getGeneralStringProperty", model.name + "," + std::to_string(selector))) {
            return answered(*answer, result, rubbish);
        }
        *result = model.nullName ? nullptr : model.name.c_str();
        return selector == DalOamSpiMrGeneralName ? TevReturnOk : TevReturnInvalidArgument;
    }

    static TevReturnT getGeneralDomainValue(DalOamSpiMrGeneralPropertiesHandle_4T properties, const char* domain,
                                            const char* key, const char** result) {
        const FakeModel& model = current->model(properties - propertiesBase);
        if (const Answer answer =
                current->note("getGeneralDomainValue", model.name + "," + shown(domain) + "," + shown(key))) {
            return answered(*answer, result, rubbish);
        }
        const auto found = model.orva.find(key);
        if (std::strcmp(domain, "ORVA") != 0 || found == model.orva.end()) {
            *result = rubbish;
            return TevReturnNotFound;
        }
        *result = found->second ? found->second->c_str() : nullptr;
        return TevReturnOk;
    }

    static TevReturnT getMomFileName(const char* momName, const char* momVersion, const char** result) {
        if (const Answer answer = current->note("getMomFileName", shown(momName) + "," + shown(momVersion))) {
            return *answer;
        }
        for (const FakeModel& model : current->models) {
            if (model.name == momName && model.version.has_value() == (momVersion != nullptr) &&
                (momVersion == nullptr || *model.version == momVersion)) {
                if (model.nullFile) {
                    *result = nullptr;
                    return TevReturnOk;
                }
                *result = current->kept(model.file.value_or("/models/" + model.name + ".xml"));
                return TevReturnOk;
            }
        }
        return TevReturnNotFound;
    }

    static void reserved() { throw std::logic_error("a reserved slot was called"); }

    static TevReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* name,
                                     DalMoAttributeValueContainer** result) {
        if (const Answer answer =
                current->note("router.getMoAttribute", std::to_string(txHandle) + "," + dn + "," + name)) {
            return *answer;
        }
        const auto found = current->attributes.find({dn, name});
        if (found == current->attributes.end()) {
            return TevReturnNotFound;
        }
        *result = &found->second;
        return TevReturnOk;
    }

    static TevReturnT newMoIterator(unsigned long txHandle, const char* parentDn, const char* className,
                                    void** iterator) {
        if (const Answer answer =
                current->note("router.newMoIterator", std::to_string(txHandle) + "," + parentDn + "," + className)) {
            return *answer;
        }
        const std::string start = parentDn + std::string(*parentDn == '\0' ? "" : ",") + className + "=";
        Listing keys;
        for (auto dn = current->objects.rbegin(); dn != current->objects.rend(); ++dn) {
            if (dn->compare(0, start.size(), start) == 0 && dn->find(',', start.size()) == std::string::npos) {
                keys.push_back(dn->substr(start.size()));
            }
        }
        if (keys.empty()) {
            return TevReturnNotFound;
        }
        const std::lock_guard<std::mutex> lock(current->mutex);
        *iterator = &current->listings.emplace_back(keys);
        return TevReturnOk;
    }

    static TevReturnT nextMo(void* iterator, char** result) {
        if (const Answer answer = current->note("router.nextMo")) {
            return *answer;
        }
        auto& keys = *static_cast<Listing*>(iterator);
        *result = nullptr;
        if (!keys.empty()) {
            *result = const_cast<char*>(current->kept(keys.back()));
            keys.pop_back();
        }
        return TevReturnOk;
    }

    static DalPortalAccessor portalAccessor;
    static DalPortal_3 portal;
    static DalOamSpiTransaction_2 transaction;
    static DalMgmtSpiThreadContext_2 threadContexts[2];
    static const DalOamSpiMrRoot_4 repositoryRoot;
    static const DalOamSpiMrGeneralProperties_4 repositoryProperties;
    static const DalOamSpiMrMom_4 repositoryMom;
    static DalOamSpiModelRepository_4 repository;
    static DalOamSpiModelRepositoryExtension_1 extension;
    static DalOamSpiManagedObject_1 router;
};

DalPortalAccessor FakeHost::Tables::portalAccessor = {getPortal};
DalPortal_3 FakeHost::Tables::portal = {
    {"DalPortalService", "DalPortal", "3"}, getInterface, reserved, registerComponent, unregisterComponent};
DalOamSpiTransaction_2 FakeHost::Tables::transaction = {{"DalOamSpiTransactionService", "DalOamSpiTransaction", "2"},
                                                        registerParticipant};
DalMgmtSpiThreadContext_2 FakeHost::Tables::threadContexts[2] = {
    {{"DalMgmtSpiThreadContextService", "DalMgmtSpiThreadContext", "2"}, addMessage<0>},
    {{"DalMgmtSpiThreadContextService", "DalMgmtSpiThreadContext", "2"}, addMessage<1>}};
const DalOamSpiMrRoot_4 FakeHost::Tables::repositoryRoot = {getFirstMom};
const DalOamSpiMrGeneralProperties_4 FakeHost::Tables::repositoryProperties = {getGeneralStringProperty, reserved,
                                                                               reserved, getGeneralDomainValue};
const DalOamSpiMrMom_4 FakeHost::Tables::repositoryMom = {
    getMomGeneralProperties, getMomStringProperty, reserved, reserved, getMomFeatureNames, getNextMom};
DalOamSpiModelRepository_4 FakeHost::Tables::repository = {
    {"DalOamSpiModelRepositoryService", "DalOamSpiModelRepository", "4"},
    &repositoryRoot,
    &repositoryProperties,
    &repositoryMom};
DalOamSpiModelRepositoryExtension_1 FakeHost::Tables::extension = {
    {"DalOamSpiModelRepositoryService", "DalOamSpiModelRepositoryExtension", "1"}, getMomFileName};
DalOamSpiManagedObject_1 FakeHost::Tables::router = {{"DalOamSpiCmRouterService", "DalOamSpiManagedObject", "1"},
                                                     nullptr,
                                                     getMoAttribute,
                                                     newMoIterator,
                                                     nextMo,
                                                     nullptr,
                                                     nullptr,
                                                     nullptr};

FakeHost::FakeHost() {
    if (current != nullptr) {
        throw std::logic_error("there is a host already");
    }
    current = this;
}

FakeHost::~FakeHost() {
    current = nullptr;
}

DalPortalAccessor* FakeHost::accessor() {
    return &Tables::portalAccessor;
}

void FakeHost::withoutPortal() {
    hasPortal = false;
}

void FakeHost::failCall(const std::string& operation, TevReturnT code, unsigned int nth) {
    const std::lock_guard<std::mutex> lock(mutex);
    faults[{operation, counts[operation] + nth}] = code;
}

void FakeHost::leaveOutput(const std::string& operation, unsigned int nth) {
    failCall(operation, TevReturnOk, nth);
}

void FakeHost::failAnyCall(unsigned int nth, TevReturnT code) {
    const std::lock_guard<std::mutex> lock(mutex);
    faultsOfAny[totalCount + nth] = code;
}

void FakeHost::whenCalled(const std::string& operation, std::function<void()> action) {
    const std::lock_guard<std::mutex> lock(mutex);
    actions[operation] = std::move(action);
}

void FakeHost::withdraw(const std::string& interfaceName) {
    withdrawn.insert(interfaceName);
}

void FakeHost::setAttribute(const std::string& dn, const std::string& name,
                            const DalMoAttributeValueContainer& values) {
    attributes[{dn, name}] = values;
}

void FakeHost::setTexts(const std::string& dn, const std::string& name, const std::vector<std::string>& values) {
    std::vector<DalMoAttributeValue>& given = cells.emplace_back(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        given[i].theString = const_cast<char*>(kept(values[i]));
    }
    setAttribute(dn, name, {DalMoTypeString, static_cast<std::uint32_t>(given.size()), given.data()});
}

void FakeHost::changeThreadContext() {
    threadContextInUse = 1;
}

std::vector<std::string> FakeHost::calls() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return noted;
}

void FakeHost::clearCalls() {
    const std::lock_guard<std::mutex> lock(mutex);
    noted.clear();
}

DalMgmtSpiComponent_2* FakeHost::component() const {
    return registered;
}

std::vector<DalOamSpiTransactionalResource_2*> FakeHost::participants(unsigned long txHandle) const {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = joined.find(txHandle);
    return found == joined.end() ? std::vector<DalOamSpiTransactionalResource_2*>() : found->second;
}

std::vector<std::pair<std::int32_t, std::string>> FakeHost::messages() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return posted[threadContextInUse];
}

DalMgmtSpiInterface_1* FakeHost::findOffered(const std::string& interfaceName) const {
    if (registered == nullptr) {
        return nullptr;
    }
    for (DalMgmtSpiInterface_1** offer = registered->interfaceArray; *offer != nullptr; ++offer) {
        if (interfaceName == (*offer)->interfaceName) {
            return *offer;
        }
    }
    return nullptr;
}

std::optional<TevReturnT> FakeHost::note(const std::string& operation, const std::string& arguments) {
    std::unique_lock<std::mutex> lock(mutex);
    if (const auto found = actions.find(operation); found != actions.end() && found->second) {
        const std::function<void()> action = found->second;
        lock.unlock();
        action();
        lock.lock();
    }
    noted.push_back(arguments.empty() ? operation : operation + " " + arguments);
    const auto fault = faults.find({operation, ++counts[operation]});
    const auto faultOfAny = faultsOfAny.find(++totalCount);
    if (fault != faults.end()) {
        return fault->second;
    }
    return faultOfAny != faultsOfAny.end() ? std::optional(faultOfAny->second) : std::nullopt;
}

const char* FakeHost::kept(const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex);
    return texts.insert(text).first->c_str();
}

const FakeModel& FakeHost::model(std::uint64_t handle) const {
    if (handle >= models.size()) {
        throw std::logic_error("an unknown handle was passed to the repository");
    }
    return models[static_cast<std::size_t>(handle)];
}

}  // namespace TevTest
