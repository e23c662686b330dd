#include "SchemaData.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "TevException.h"
#include "TransactionContextManager.h"

namespace TevSchemaPopulator {

namespace {

/// Builds values in memory of a transaction: everything is allocated with `malloc`, because the transaction ends with
/// a `free` of each block.
class ValueBuilder {
public:
    ValueBuilder(unsigned long handle, TransactionContextManager& manager) : txHandle(handle), transactions(manager) {}

    /// Always one value, also for an empty text.
    DalMoAttributeValueContainer* single(const std::string& text) const {
        auto* container = static_cast<DalMoAttributeValueContainer*>(std::malloc(sizeof(DalMoAttributeValueContainer)));
        if (container == nullptr) {
            throw Tev::TevException(TevReturnNoMemory, "Could not allocate memory for attribute value container");
        }
        transactions.addMemory(txHandle, container);
        container->values = newCells(1);
        transactions.addMemory(txHandle, container->values);
        container->type = DalMoTypeString;
        container->nrOfValues = 1;
        container->values[0].theString = newText(text.c_str());
        return container;
    }

    /// One value, or none for an empty text.
    DalMoAttributeValueContainer* optional(const std::string& text) const {
        return text.empty() ? empty() : single(text);
    }

    /// A value for every entry before the terminating null; none for a null list.
    DalMoAttributeValueContainer* list(const char* const* entries) const {
        if (entries == nullptr) {
            return empty();
        }
        DalMoAttributeValueContainer* container = newContainer();
        container->nrOfValues = count(entries);
        container->values = newCells(container->nrOfValues);
        for (std::uint32_t i = 0; i < container->nrOfValues; ++i) {
            container->values[i].theString = newText(entries[i]);
        }
        transactions.addMemory(txHandle, container->values);
        return container;
    }

private:
    DalMoAttributeValueContainer* empty() const {
        DalMoAttributeValueContainer* container = newContainer();
        container->nrOfValues = 0;
        container->values = nullptr;
        return container;
    }

    DalMoAttributeValueContainer* newContainer() const {
        auto* container = static_cast<DalMoAttributeValueContainer*>(std::malloc(sizeof(DalMoAttributeValueContainer)));
        transactions.addMemory(txHandle, container);
        container->type = DalMoTypeString;
        return container;
    }

    char* newText(const char* text) const {
        char* copy = strdup(text);
        transactions.addMemory(txHandle, copy);
        return copy;
    }

    static DalMoAttributeValue* newCells(std::uint32_t count) {
        return static_cast<DalMoAttributeValue*>(std::malloc(count * sizeof(DalMoAttributeValue)));
    }

    static std::uint32_t count(const char* const* entries) {
        std::uint32_t count = 0;
        while (entries[count] != nullptr) {
            ++count;
        }
        return count;
    }

    const unsigned long txHandle;
    TransactionContextManager& transactions;
};

}  // namespace

std::string SchemaData::getDebugString() const {
    std::ostringstream text;
    text << "schemaId: " << schemaId << " identifier: " << identifier << " baseModelIdentifier: " << baseModelIdentifier
         << " version: " << version << " baseModelVersion: " << baseModelVersion
         << " completeFileName: " << completeFileName;
    return text.str();
}

DalMoAttributeValueContainer* SchemaData::getValue(const char* attributeName, unsigned long txHandle,
                                                   TransactionContextManager& transactions) const {
    const ValueBuilder builder(txHandle, transactions);
    const auto asked = [attributeName](const char* name) { return std::strcmp(attributeName, name) == 0; };
    if (asked("schemaId")) {
        return builder.single(schemaId);
    }
    if (asked("identifier")) {
        return builder.single(identifier);
    }
    if (asked("baseModelIdentifier")) {
        return builder.optional(baseModelIdentifier);
    }
    if (asked("version")) {
        return builder.single(version);
    }
    if (asked("baseModelVersion")) {
        return builder.optional(baseModelVersion);
    }
    if (asked("selectedModelOptions")) {
        return builder.list(selectedModelOptions);
    }
    throw Tev::TevException(TevReturnNotFound, "Attribute does not exist in the schema, attribute: %s", attributeName);
}

void SchemaData::releaseOptions(const char** options) noexcept {
    if (options == nullptr) {
        return;
    }
    for (const char** entry = options; *entry != nullptr; ++entry) {
        std::free(const_cast<char*>(*entry));
    }
    delete[] options;
}

}  // namespace TevSchemaPopulator
