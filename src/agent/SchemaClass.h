#ifndef TEV_AGENT_SCHEMA_CLASS_H
#define TEV_AGENT_SCHEMA_CLASS_H

#include <string>
#include <vector>

#include "Route.h"

namespace TevAgent {

/// What the agent knows of the managed-object class Schema.
class SchemaClass {
public:
    static constexpr const char* name = "Schema";

    /// Holds any number of values; the other attributes hold one at most.
    static constexpr const char* listAttribute = "selectedModelOptions";

    /// The names of the attributes, in the order in which they are shown.
    static const std::vector<std::string>& attributes();

    /// Whether the object of that DN is an instance of the class.
    static bool isClassOf(const std::string& dn);

    /// Where the instances stand and whose they are.
    static const Route& route();
};

}  // namespace TevAgent

#endif
