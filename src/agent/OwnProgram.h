#ifndef TEV_AGENT_OWN_PROGRAM_H
#define TEV_AGENT_OWN_PROGRAM_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace TevAgent {

/// This very program, run once more.
class OwnProgram {
public:
    /// Its standard output and standard error, and whether it gets a process group of its own.
    struct Surroundings {
        int output;  ///< -1: closed
        int error;
        bool isApart;
    };

    /// Starts it with these arguments (without the program's name) and nothing to read. Returns its process, which the
    /// caller waits for, and which is killed when this thread ends before it, be it with the whole process. Throws
    /// `Failure` (operation failed) with the reason when it cannot be started. Thread-safe.
    static pid_t start(const std::vector<std::string>& arguments, const Surroundings& surroundings);
};

}  // namespace TevAgent

#endif
