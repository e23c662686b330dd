#ifndef TEV_AGENT_MANAGED_OBJECT_H
#define TEV_AGENT_MANAGED_OBJECT_H

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ObjectAttribute.h"

namespace TevAgent {

/// A managed object with all that is below it. May be moved, not copied.
struct ManagedObject {
    /// The children of one class.
    struct Instances {
        std::vector<std::string> keys;  ///< in the order in which they were added
        std::map<std::string, std::unique_ptr<ManagedObject>, std::less<>> byKey;
    };

    std::map<std::string, ObjectAttribute, std::less<>> attributes;  ///< by name
    std::map<std::string, Instances, std::less<>> children;          ///< by class name
};

}  // namespace TevAgent

#endif
