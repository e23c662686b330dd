#ifndef TEV_AGENT_TEMPORARY_FILE_H
#define TEV_AGENT_TEMPORARY_FILE_H

#include <cstddef>
#include <string>

namespace TevAgent {

/// A file in memory, without a name, that other processes may write into: it is gone with the last descriptor. It takes
/// a megabyte; who writes more gets EPERM.
class TemporaryFile {
public:
    /// Throws std::system_error when the system gives none.
    TemporaryFile();
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Owned by this object; no program that is started inherits it.
    int descriptor() const { return file; }

    /// What was written so far.
    std::string text() const;

    /// Whether there is no room any more.
    bool isFull() const;

private:
    std::size_t size() const;

    const int file;
};

}  // namespace TevAgent

#endif
