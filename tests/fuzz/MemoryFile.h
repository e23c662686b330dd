#ifndef MEMORY_FILE_H
#define MEMORY_FILE_H

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "Require.h"

namespace TevFuzz {

/// A regular file of the process alone, which leaves nothing behind however the process ends.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& text = "") : descriptor(memfd_create("input", MFD_CLOEXEC)) { write(text); }
    ~MemoryFile() { close(descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    /// Replaces what the file holds.
    void write(const std::string& text) const {
        require(ftruncate(descriptor, 0) == 0 &&
                    pwrite(descriptor, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()),
                "a file in memory can be written");
    }

    /// Under this name the process can open it.
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

    const int descriptor;
};

}  // namespace TevFuzz

#endif
