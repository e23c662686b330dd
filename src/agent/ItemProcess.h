#ifndef TEV_AGENT_ITEM_PROCESS_H
#define TEV_AGENT_ITEM_PROCESS_H

#include <chrono>
#include <string>
#include <vector>

#include "CheckItem.h"
#include "CheckResult.h"

namespace TevAgent {

/// Tries items of a component's check in processes of their own: runs of this very program, so that what is seen can be
/// had again under a debugger. They leave no core files. Thread-safe.
class ItemProcess {
public:
    /// `commandLine` is that of a check in the process which writes JSON, without the program's name and without an
    /// item; `limit` is what an item may take.
    ItemProcess(std::vector<std::string> commandLine, std::chrono::seconds limit);

    /// Throws `Failure` (operation failed) when there can be no process, and `Interrupted`.
    CheckResult attempt(const CheckItem& item) const;

private:
    const std::vector<std::string> arguments;
    const std::chrono::seconds timeLimit;
};

}  // namespace TevAgent

#endif
