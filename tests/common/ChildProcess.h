#ifndef CHILD_PROCESS_H
#define CHILD_PROCESS_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "TempFolder.h"

namespace TevTest {

/// A program that runs as a child of the test, with the test's environment but for variables that begin with "TEV_".
class ChildProcess {
public:
    /// Where the child's output goes when not into a file that the test can read back.
    struct Streams {
        int out = -1;
        int err = -1;
        bool closeErr = false;
    };

    /// Starts `program`; `environment` holds "NAME=value" texts. Throws std::system_error when that fails.
    ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                 const std::vector<std::string>& environment, Streams streams);
    ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                 const std::vector<std::string>& environment)
        : ChildProcess(program, arguments, environment, Streams{}) {}
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for the end and returns the exit code, or the negative number of the signal that ended the child.
    int wait();

    std::string out() const;
    std::string err() const;

private:
    TempFolder folder;
    pid_t processId = -1;
};

}  // namespace TevTest

#endif
