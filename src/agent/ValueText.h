#ifndef TEV_AGENT_VALUE_TEXT_H
#define TEV_AGENT_VALUE_TEXT_H

#include <string>
#include <vector>

#include "DalOamSpiManagedObject.h"

namespace TevAgent {

/// Turns attribute values into texts.
class ValueText {
public:
    /// One text for each value. Throws std::invalid_argument, with what is wrong with the container, for one that
    /// cannot be read: null, without its cells, with a null text, or of a type that has no text.
    static std::vector<std::string> of(const DalMoAttributeValueContainer* container);
};

}  // namespace TevAgent

#endif
