#include "SchemaData.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>

#include "TevException.h"
#include "TransactionContextManager.h"

namespace TevSchemaPopulator {

namespace {

struct FreeCells {
    void operator()(DalMoAttributeValue* cells) const { std::free(cells); }
};

/// Builds values in memory of a transaction: everything is allocated with `malloc`, because the transaction ends with
/// a `free` of each block. The order in which the blocks are registered is the order of those frees.
///
/// Only the container of a single value is checked for lack of memory.
class ValueBuilder {
public:
    ValueBuilder(unsigned long handle, TransactionContextManager& manager) : txHandle(handle), transactions(manager) {}

    /// Always one value, also for an empty text.
    DalMoAttributeValueContainer* single(const std::string& text) const {
        auto* const container = allocate<DalMoAttributeValueContainer>(1);
        if (container == nullptr) {
            throw Tev::TevException(TevReturnNoMemory, "Could not allocate memory for attribute value container");
        }
        transactions.addMemory(txHandle, container);
        auto* const cell = allocate<DalMoAttributeValue>(1);
        transactions.addMemory(txHandle, cell);
        *container = {DalMoTypeString, 1, cell};
        cell->theString = newText(text.c_str());
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
        DalMoAttributeValueContainer* const container = empty();
        while (entries[container->nrOfValues] != nullptr) {
            ++container->nrOfValues;
        }
        std::unique_ptr<DalMoAttributeValue, FreeCells> cells(allocate<DalMoAttributeValue>(container->nrOfValues));
        container->values = cells.get();
        for (std::uint32_t i = 0; i < container->nrOfValues; ++i) {
            container->values[i].theString = newText(entries[i]);
        }
        transactions.addMemory(txHandle, cells.release());
        return container;
    }

private:
    DalMoAttributeValueContainer* empty() const {
        auto* const container = allocate<DalMoAttributeValueContainer>(1);
        transactions.addMemory(txHandle, container);
        *container = {DalMoTypeString, 0, nullptr};
        return container;
    }

    char* newText(const char* text) const {
        char* const copy = strdup(text);
        transactions.addMemory(txHandle, copy);
        return copy;
    }

    template <class T>
    static T* allocate(std::uint32_t count) {
        return static_cast<T*>(std::malloc(count * sizeof(T)));
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
