#ifndef CHILD_PROCESS_H
#define CHILD_PROCESS_H

#include <sys/resource.h>
#include <sys/types.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "TempFolder.h"

namespace TevTest {

/// A program that runs as a child of the test, in a session of its own and with the usual signal handling. Its
/// environment is that of the test but for variables that begin with "TEV_" and those that tell how to write for a
/// terminal. Used by one thread.
class ChildProcess {
public:
    static constexpr int closed = -2;  ///< in place of a descriptor

    struct Setting {
        std::map<std::string, std::string> environment{};  ///< added
        int in = -1;                                       ///< descriptor in place of /dev/null
        int out = -1;            ///< descriptor in place of a file that the test can read back
        int err = -1;            ///< the same
        std::string terminal{};  ///< path of a terminal that becomes the controlling one
        std::vector<int> ignoredSignals{};
        bool isUnprivileged = false;           ///< files are open to it as to any user, also where tests run as root
        rlim_t fileSizeLimit = RLIM_INFINITY;  ///< no file can be written beyond it
        bool endsWithTest = false;             ///< gets SIGTERM when the thread that started it goes, however that ends
        std::string workingFolder = "/";
    };

    /// Starts `program`, an absolute path. Throws std::system_error when there can be no child; when it is the program
    /// that cannot be started, its exit code is 126.
    ChildProcess(const std::string& program, const std::vector<std::string>& arguments, const Setting& setting);
    /// Kills the program if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for the end and returns the exit code, or the negative number of the signal that ended the program.
    int wait();

    bool hasEnded();

    /// Waits until standard error holds `text`; throws std::runtime_error when it never does.
    void waitForError(const std::string& text);

    /// Sends the program a signal unless it has ended.
    void send(int signal) const;

    pid_t id() const { return pid; }

    std::string out() const;
    std::string err() const;

    /// Bytes that all reads of the program, its libraries included, have given; once it has ended.
    std::uint64_t bytesRead() const { return readBytes; }

private:
    /// Takes the end of the program in, waiting for it or not. Returns whether it has ended.
    bool reap(bool isWaiting);

    TempFolder folder;
    pid_t pid = -1;  ///< -1 once it has ended
    int code = 0;
    std::uint64_t readBytes = 0;
};

}  // namespace TevTest

#endif
