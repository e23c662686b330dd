#ifndef TEV_AGENT_PROCESS_STATE_H
#define TEV_AGENT_PROCESS_STATE_H

#include <map>
#include <string>

namespace TevAgent {

/// What all code of a process shares, as it was when this object was made: signal handlers, working folder, file mode
/// mask, environment, locale. Made while no other thread makes files.
class ProcessState {
public:
    ProcessState();

    /// The first thing that is not as it was in `before`, in words: "the handler of SIGUSR1"; empty when all is.
    std::string changeSince(const ProcessState& before) const;

private:
    std::map<std::string, std::string> parts;
};

}  // namespace TevAgent

#endif
