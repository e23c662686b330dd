#ifndef TEV_AGENT_LOADER_H
#define TEV_AGENT_LOADER_H

#include <string>

namespace TevAgent {

/// The system's loader of shared libraries, for those of components. Used by one thread.
class Loader {
public:
    /// Loads the library with that absolute path, with all that it refers to. Null: `lastError` tells why. What the
    /// library's initializers throw passes through.
    static void* load(const std::string& file);

    /// Returns the loader's code, 0 when nothing is wrong. What the library's finalizers throw passes through.
    static int unload(void* library);

    /// The address of what the library calls `symbol`. Null: `lastError` tells why.
    static void* find(void* library, const char* symbol);

    /// What the loader says of its last failure, which was one with `file`, without the path at its beginning; then
    /// what to do where the file is no library, or one for another machine.
    static std::string lastError(const std::string& file);
};

}  // namespace TevAgent

#endif
