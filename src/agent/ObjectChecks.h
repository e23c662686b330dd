#ifndef TEV_AGENT_OBJECT_CHECKS_H
#define TEV_AGENT_OBJECT_CHECKS_H

#include <vector>

#include "CheckItem.h"

namespace TevAgent {

/// What is checked of a component's managed objects: listings and reads, and the refusal of what it does not have.
class ObjectChecks {
public:
    static std::vector<CheckItem> items();
};

}  // namespace TevAgent

#endif
