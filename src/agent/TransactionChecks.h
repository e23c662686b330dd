#ifndef TEV_AGENT_TRANSACTION_CHECKS_H
#define TEV_AGENT_TRANSACTION_CHECKS_H

#include <vector>

#include "CheckItem.h"

namespace TevAgent {

/// What is checked of a component's part in transactions.
class TransactionChecks {
public:
    static std::vector<CheckItem> items();

    /// Those for which instances have to be listed and read, which other items try first: what is handed out, for how
    /// long, and to whom.
    static std::vector<CheckItem> memoryItems();
};

}  // namespace TevAgent

#endif
