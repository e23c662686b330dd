#ifndef TEV_CLIENT_PROCESS_H
#define TEV_CLIENT_PROCESS_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "FileDescriptor.h"
#include "PseudoTerminal.h"

namespace Tev {

/// The SFTP client as a child process: in a session of its own with `terminal` as its terminal, an environment that is
/// always the same, default signals, pipes as standard streams and an open file as descriptor 3. It has no other
/// descriptor of the host. No process is left when the object goes, or when the host dies.
///
/// It needs nothing of the host's: SIGCHLD may be ignored, and another thread may wait for all children.
class ClientProcess {
public:
    /// Starts `words[0]`, a path. Throws TevException when that fails.
    ClientProcess(const std::vector<std::string>& words, const FileDescriptor& file, const PseudoTerminal& terminal);
    ~ClientProcess();
    ClientProcess(const ClientProcess&) = delete;
    ClientProcess& operator=(const ClientProcess&) = delete;

    FileDescriptor input;   ///< to write to; writes do not block
    FileDescriptor output;  ///< to read; reads do not block
    FileDescriptor error;   ///< to read; reads do not block

    /// Readable once the process has ended; -1 when it had ended at once.
    const FileDescriptor& ending() const { return handle; }

    bool hasEnded() const noexcept;

    /// Sends SIGINT to the client: it leaves the command that it carries out; between two commands it ends.
    void interrupt() const;

    /// Ends the client and what it has started, within about 0.1 s.
    void end() noexcept;

private:
    void openHandle();

    pid_t pid = -1;
    FileDescriptor handle;
};

}  // namespace Tev

#endif
