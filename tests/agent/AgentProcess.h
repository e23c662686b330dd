#ifndef AGENT_PROCESS_H
#define AGENT_PROCESS_H

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "TempFolder.h"

namespace TevTest {

/// How a run of the program ended. A program that was killed has no status but a signal.
struct AgentOutcome {
    int status = -1;
    int signal = 0;
    std::string out;
    std::string err;
    std::uint64_t bytesRead = 0;  ///< by all reads of the program, its libraries included
};

/// One run of the program `tev-agent`. Its environment is that of the test without the agent's own variables. Used by
/// one thread.
class AgentProcess {
public:
    struct Setting {
        std::map<std::string, std::string> environment{};  ///< added
        std::string program = TEV_AGENT_PROGRAM;
        std::string outputFile{};     ///< in place of what the outcome tells; opened for writing
        bool isOutputClosed = false;  ///< descriptor 1 is closed
        bool isReaderGone = false;    ///< descriptor 1 is a pipe that nobody reads
        bool isSigintIgnored = false;
        bool isUnprivileged = false;  ///< files are open to it as to any user, also where tests run as root
        std::string workingFolder = "/";
    };

    explicit AgentProcess(const std::vector<std::string>& arguments, const Setting& setting);
    /// Kills the program if it still runs.
    ~AgentProcess();
    AgentProcess(const AgentProcess&) = delete;
    AgentProcess& operator=(const AgentProcess&) = delete;

    /// Runs the program from start to end.
    static AgentOutcome run(const std::vector<std::string>& arguments);
    static AgentOutcome run(const std::vector<std::string>& arguments, const Setting& setting);

    /// Waits until standard error holds `text`; throws std::runtime_error when the program has ended without it.
    void waitForError(const std::string& text);

    void interrupt() const;

    bool hasEnded();

    AgentOutcome wait();

private:
    /// Takes the end of the program in, waiting for it or not. Returns whether it has ended.
    bool reap(bool isWaiting);

    TempFolder folder;
    std::string outFile;
    std::string errFile;
    pid_t pid = -1;
    AgentOutcome outcome;
};

}  // namespace TevTest

#endif
