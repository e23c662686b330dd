#include "Floor.h"

#include <Poco/ScopedLock.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string_view>

#include "Stopwatch.h"

namespace TevBench {

namespace {

using Lock = Poco::ScopedLock<Poco::Mutex>;

/// Whether `text` begins with `prefix`, and then holds `literals`, in this order.
bool holds(const std::string& text, std::string_view prefix, std::initializer_list<std::string_view> literals) {
    if (text.compare(0, prefix.size(), prefix) != 0) {
        return false;
    }
    const char* at = text.data() + prefix.size();
    const char* const end = text.data() + text.size();
    for (const std::string_view literal : literals) {
        const void* const found = memmem(at, static_cast<std::size_t>(end - at), literal.data(), literal.size());
        if (found == nullptr) {
            return false;
        }
        at = static_cast<const char*>(found) + literal.size();
    }
    return true;
}

}  // namespace

Floor::Floor(Framework& host) : framework(host) {
    seconds = processorSecondsOf([this] { start(); });
}

Floor::~Floor() {
    for (const Record& record : records) {
        for (const char** entry = record.selectedModelOptions; *entry != nullptr; ++entry) {
            std::free(const_cast<char*>(*entry));
        }
        delete[] record.selectedModelOptions;
    }
}

void Floor::start() {
    const DalOamSpiModelRepository_4& repository = framework.repository();
    Record record;  // its texts keep their memory
    DalOamSpiMrMomHandle_4T mom = 0;
    for (TevReturnT status = repository.root->getFirstMom(&mom); status == TevReturnOk;
         status = repository.mom->getNextMom(mom, &mom)) {
        fill(record, mom);
        records.push_back(record);
    }
}

void Floor::fill(Record& record, DalOamSpiMrMomHandle_4T mom) const {
    const DalOamSpiMrMom_4& table = *framework.repository().mom;
    const DalOamSpiMrGeneralProperties_4& general = *framework.repository().generalProperties;
    DalOamSpiMrGeneralPropertiesHandle_4T properties = 0;
    table.getMomGeneralProperties(mom, &properties);
    const char* text = nullptr;
    general.getGeneralStringProperty(properties, DalOamSpiMrGeneralName, &text);
    record.schemaId = text;
    record.identifier = record.schemaId;
    record.baseModelIdentifier.clear();
    record.baseModelVersion.clear();
    record.version.clear();
    if (general.getGeneralDomainValue(properties, "ORVA", "orvaMomName", &text) == TevReturnOk) {
        record.baseModelIdentifier = text;
    }
    if (general.getGeneralDomainValue(properties, "ORVA", "orvaMomVersion", &text) == TevReturnOk) {
        const char* release = nullptr;
        if (general.getGeneralDomainValue(properties, "ORVA", "orvaMomRelease", &release) == TevReturnOk) {
            record.baseModelVersion.append(text).append(1, '.').append(release);
            if (general.getGeneralDomainValue(properties, "ORVA", "orvaMomCorrection", &text) == TevReturnOk) {
                record.baseModelVersion.append(1, '.').append(text);
            }
        }
    }
    const char* version = nullptr;
    table.getMomStringProperty(mom, DalOamSpiMrMomVersion, &version);
    if (version != nullptr) {
        record.version = version;
    }
    table.getMomFeatureNames(mom, &record.selectedModelOptions);
    const char* release = nullptr;
    table.getMomStringProperty(mom, DalOamSpiMrMomRelease, &release);
    if (release != nullptr) {
        record.version.append(version == nullptr ? 0 : 1, '.').append(release);
    }
    table.getMomStringProperty(mom, DalOamSpiMrMomCorrection, &text);
    if (text != nullptr) {
        record.version.append(release == nullptr ? 0 : 1, '.').append(text);
    }
    framework.extension().getMomFileName(record.identifier.c_str(), version, &text);
    record.completeFileName = text;
    record.fileName.assign(record.completeFileName, record.completeFileName.rfind('/') + 1);
}

void Floor::join(unsigned long txHandle) const {
    framework.transactionService().registerParticipant(txHandle, nullptr);
}

void Floor::finish(unsigned long txHandle) {
    const Lock lock(mutex);
    const auto found = transactions.find(txHandle);
    if (found == transactions.end()) {
        return;
    }
    for (void* const handle : found->second.iteratorHandles) {
        iterators.erase(handle);
    }
    for (void* const block : found->second.memoryBlocks) {
        std::free(block);
    }
    transactions.erase(found);
}

void* Floor::newMoIterator(unsigned long txHandle, const char* parentDn, const char* className) {
    if (!isParentDn(parentDn) || std::strcmp(className, "Schema") != 0) {
        return nullptr;
    }
    const Lock lock(mutex);
    Transaction& transaction = transactions[txHandle];
    void* const handle = std::malloc(4);
    transaction.iteratorHandles.push_back(handle);
    transaction.memoryBlocks.push_back(handle);
    iterators[handle] = {0, txHandle};
    return handle;
}

char* Floor::nextMo(void* iterator) {
    unsigned int index = 0;
    unsigned long txHandle = 0;
    {
        const Lock lock(mutex);
        auto& context = iterators.find(iterator)->second;
        index = context.first++;
        txHandle = context.second;
    }
    if (index >= records.size()) {
        return nullptr;
    }
    const std::string schemaId = records[index].schemaId;
    return copy(txHandle, schemaId.c_str());
}

DalMoAttributeValueContainer* Floor::getMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName) {
    if (!isSchemaDn(dn)) {
        return nullptr;
    }
    const std::string schemaId = std::strrchr(dn, '=') + 1;
    const int index = find(schemaId);
    if (index < 0) {
        return nullptr;
    }
    const Record& record = records[static_cast<std::size_t>(index)];
    if (std::strcmp(attributeName, "schemaId") == 0) {
        return single(txHandle, record.schemaId);
    }
    if (std::strcmp(attributeName, "identifier") == 0) {
        return single(txHandle, record.identifier);
    }
    if (std::strcmp(attributeName, "baseModelIdentifier") == 0) {
        return record.baseModelIdentifier.empty() ? empty(txHandle) : single(txHandle, record.baseModelIdentifier);
    }
    if (std::strcmp(attributeName, "version") == 0) {
        return single(txHandle, record.version);
    }
    if (std::strcmp(attributeName, "baseModelVersion") == 0) {
        return record.baseModelVersion.empty() ? empty(txHandle) : single(txHandle, record.baseModelVersion);
    }
    return list(txHandle, record.selectedModelOptions);
}

bool Floor::isParentDn(const char* dn) {
    return holds(dn, "ManagedElement=", {",SystemFunctions=", ",SysM="});
}

bool Floor::isSchemaDn(const char* dn) {
    return holds(dn, "ManagedElement=", {",SystemFunctions=", ",SysM=", ",Schema="});
}

int Floor::find(std::string schemaId) const {
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (records[i].schemaId.size() == schemaId.size() &&
            std::memcmp(records[i].schemaId.data(), schemaId.data(), schemaId.size()) == 0) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

void Floor::addMemory(unsigned long txHandle, void* block) {
    const Lock lock(mutex);
    transactions[txHandle].memoryBlocks.push_back(block);
}

template <class T>
T* Floor::allocate(unsigned long txHandle, std::size_t count) {
    auto* const block = static_cast<T*>(std::malloc(count * sizeof(T)));
    addMemory(txHandle, block);
    return block;
}

char* Floor::copy(unsigned long txHandle, const char* text) {
    char* const block = strdup(text);
    addMemory(txHandle, block);
    return block;
}

DalMoAttributeValueContainer* Floor::empty(unsigned long txHandle) {
    auto* const container = allocate<DalMoAttributeValueContainer>(txHandle, 1);
    *container = {DalMoTypeString, 0, nullptr};
    return container;
}

DalMoAttributeValueContainer* Floor::single(unsigned long txHandle, const std::string& text) {
    auto* const container = allocate<DalMoAttributeValueContainer>(txHandle, 1);
    *container = {DalMoTypeString, 1, allocate<DalMoAttributeValue>(txHandle, 1)};
    container->values->theString = copy(txHandle, text.c_str());
    return container;
}

DalMoAttributeValueContainer* Floor::list(unsigned long txHandle, const char* const* entries) {
    DalMoAttributeValueContainer* const container = empty(txHandle);
    while (entries[container->nrOfValues] != nullptr) {
        ++container->nrOfValues;
    }
    container->values =
        static_cast<DalMoAttributeValue*>(std::malloc(container->nrOfValues * sizeof(DalMoAttributeValue)));
    for (std::uint32_t i = 0; i < container->nrOfValues; ++i) {
        container->values[i].theString = copy(txHandle, entries[i]);
    }
    addMemory(txHandle, container->values);
    return container;
}

}  // namespace TevBench
