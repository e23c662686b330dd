#ifndef TEV_AGENT_REGULAR_FILE_H
#define TEV_AGENT_REGULAR_FILE_H

#include <cstddef>
#include <filesystem>

#include "OpenFile.h"

namespace TevAgent {

/// A regular file, open for reading. Whatever else bears the name (a folder, a fifo, a device) is refused without
/// waiting for it. Used by one thread at a time.
class RegularFile {
public:
    /// Opens `path`, following links. Throws `FileError` (without a line) when that fails.
    explicit RegularFile(const std::filesystem::path& path);

    /// Reads up to `size` bytes into `buffer` with one call of read(2) and returns how many there were, 0 at the end
    /// of the file. Throws `FileError` (without a line) when reading fails.
    std::size_t read(char* buffer, std::size_t size);

private:
    const OpenFile file;
};

}  // namespace TevAgent

#endif
