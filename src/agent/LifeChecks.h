#ifndef TEV_AGENT_LIFE_CHECKS_H
#define TEV_AGENT_LIFE_CHECKS_H

#include <vector>

#include "CheckItem.h"

namespace TevAgent {

/// What is checked of a component's life: loading, tables, dependencies, start and stop, unloading.
class LifeChecks {
public:
    /// In the order in which they are tried, from loading to start and stop.
    static std::vector<CheckItem> items();

    /// What is left to see of a component that works.
    static std::vector<CheckItem> lastItems();
};

}  // namespace TevAgent

#endif
