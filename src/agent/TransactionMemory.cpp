#include "TransactionMemory.h"

namespace TevAgent {

char* TransactionMemory::copyOf(const std::string& text) {
    return texts.emplace_back(text).data();
}

DalMoAttributeValueContainer* TransactionMemory::copyOf(const ObjectAttribute& attribute) {
    std::vector<DalMoAttributeValue>& values = cells.emplace_back(attribute.values);
    if (attribute.type == DalMoTypeString || attribute.type == DalMoTypeReference) {
        for (DalMoAttributeValue& value : values) {
            value.theString = copyOf(std::string(value.theString));
        }
    }
    DalMoAttributeValue* const first = values.empty() ? nullptr : values.data();
    return &containers.emplace_back(
        DalMoAttributeValueContainer{attribute.type, static_cast<std::uint32_t>(values.size()), first});
}

}  // namespace TevAgent
