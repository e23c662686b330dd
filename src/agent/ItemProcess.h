#ifndef TEV_AGENT_ITEM_PROCESS_H
#define TEV_AGENT_ITEM_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <set>
#include <string>
#include <vector>

#include "AnnotatedMutex.h"
#include "CheckItem.h"
#include "CheckResult.h"

namespace TevAgent {

/// Tries items of a component's check in processes of their own: runs of this very program, so that what is seen can be
/// had again under a debugger. They leave no core files and, unless this process has other children, none of the
/// processes that they started. There is one object at a time. Thread-safe.
class ItemProcess {
public:
    /// `checkWords` is what stands behind the command `check` for the same subject; `limit` is what an item may take.
    ItemProcess(std::vector<std::string> checkWords, std::chrono::seconds limit);

    /// Throws `Failure` (operation failed) when there can be no process, and `Interrupted`.
    CheckResult attempt(const CheckItem& item);

private:
    class Run;

    pid_t start(const std::vector<std::string>& words, int output, int error);

    /// Ends the process if it has not ended, and what it left. Returns how it ended, as `waitpid` tells.
    int end(pid_t process);

    const std::vector<std::string> subjectWords;
    const std::chrono::seconds timeLimit;

    /// Whether this process had no children before, as it has where a script became this program: then it could not
    /// tell theirs from those of the items, and ends none.
    const bool isAlone;
    Tev::AnnotatedMutex mutex;
    std::set<pid_t> underWay TEV_GUARDED_BY(mutex);
};

}  // namespace TevAgent

#endif
