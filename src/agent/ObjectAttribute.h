#ifndef TEV_AGENT_OBJECT_ATTRIBUTE_H
#define TEV_AGENT_OBJECT_ATTRIBUTE_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "DalOamSpiManagedObject.h"

namespace TevAgent {

/// An attribute of a managed object: a type and any number of values. May be moved, not copied. Several threads may
/// read one object.
struct ObjectAttribute {
    /// The DalMoType code that a type's name in the objects file stands for ("int8" to "int64", "uint8" to "uint64",
    /// "string", "bool", "reference", "enum", "double"), or 0 when the name is none of these.
    static std::int32_t typeNamed(std::string_view name);

    /// Appends the value that `text` tells. A string is taken as it stands, a reference must have the form of a DN;
    /// for the other types white space around the value is passed over, a number is decimal, a double finite, a bool
    /// "true" or "false". Throws std::invalid_argument with the reason, and appends nothing, when `text` is no value
    /// of the type or out of its range.
    void append(const std::string& text);

    std::int32_t type = DalMoTypeString;         ///< one of the DalMoType codes; structures and void do not occur
    std::vector<DalMoAttributeValue> values;     ///< their texts belong to this object and do not move with it
    std::vector<std::unique_ptr<char[]>> texts;  ///< of the values that have one
};

}  // namespace TevAgent

#endif
