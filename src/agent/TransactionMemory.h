#ifndef TEV_AGENT_TRANSACTION_MEMORY_H
#define TEV_AGENT_TRANSACTION_MEMORY_H

#include <deque>
#include <string>
#include <vector>

#include "DalOamSpiManagedObject.h"
#include "ObjectAttribute.h"

namespace TevAgent {

/// What the router handed out of its own in one transaction: copies, which end with this object. Used by one thread
/// at a time.
class TransactionMemory {
public:
    /// A copy of `text`, owned by this object.
    char* copyOf(const std::string& text);

    /// A container with a copy of the attribute's values, all owned by this object. Without values it has no cells.
    DalMoAttributeValueContainer* copyOf(const ObjectAttribute& attribute);

private:
    // Deques, so that what was handed out stays where it is.
    std::deque<std::string> texts;
    std::deque<std::vector<DalMoAttributeValue>> cells;
    std::deque<DalMoAttributeValueContainer> containers;
};

}  // namespace TevAgent

#endif
