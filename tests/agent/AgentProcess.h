#ifndef AGENT_PROCESS_H
#define AGENT_PROCESS_H

#include <cstdint>
#include <string>
#include <vector>

#include "ChildProcess.h"

namespace TevTest {

/// How a run of the program ended. A program that was killed has no status but a signal.
struct AgentOutcome {
    int status = -1;
    int signal = 0;
    std::string out;
    std::string err;
    std::uint64_t bytesRead = 0;  ///< by all reads of the program, its libraries included
};

/// One run of the program `tev-agent`, or of a copy of it.
class AgentProcess : public ChildProcess {
public:
    explicit AgentProcess(const std::vector<std::string>& arguments, const Setting& setting = {},
                          const std::string& program = TEV_AGENT_PROGRAM)
        : ChildProcess(program, arguments, setting) {}

    /// Waits for the end.
    AgentOutcome outcome();

    /// Returns once the program, which is about to wait for something, does so, or has ended. (The thread sanitizer
    /// loses a signal that comes when a program is just beginning to wait for the first time.)
    void waitUntilAsleep();

    /// Runs the program from start to end.
    static AgentOutcome run(const std::vector<std::string>& arguments, const Setting& setting = {});
};

}  // namespace TevTest

#endif
