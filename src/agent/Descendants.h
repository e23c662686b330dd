#ifndef TEV_AGENT_DESCENDANTS_H
#define TEV_AGENT_DESCENDANTS_H

#include <sys/types.h>

#include <cstddef>
#include <vector>

namespace TevAgent {

/// The processes that this one has brought forth. Thread-safe.
class Descendants {
public:
    /// From now on those whose parent ends become children of this process, wherever they moved meanwhile; but for
    /// those below one that has done the same.
    static void adopt();

    /// The children of this process, those included that have ended and were not waited for.
    static std::vector<pid_t> children();

    /// How many of them have not ended.
    static std::size_t running();
};

}  // namespace TevAgent

#endif
