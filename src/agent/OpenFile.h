#ifndef TEV_AGENT_OPEN_FILE_H
#define TEV_AGENT_OPEN_FILE_H

#include <fcntl.h>
#include <unistd.h>

namespace TevAgent {

/// A file that is closed with the object. One that is made is for its owner only.
class OpenFile {
public:
    OpenFile(const char* file, int flags) : descriptor(open(file, flags | O_CLOEXEC | O_NOCTTY, 0600)) {}
    ~OpenFile() {
        if (descriptor != -1) {
            close(descriptor);
        }
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    const int descriptor;  ///< -1, with `errno`, when it could not be opened
};

}  // namespace TevAgent

#endif
