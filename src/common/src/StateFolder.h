#ifndef TEV_STATE_FOLDER_H
#define TEV_STATE_FOLDER_H

#include <filesystem>

namespace Tev {

/// The folder of what outlives the process: `$TEV_STATE_DIR`; else for root `/var/lib/tev`; else `$XDG_STATE_HOME/tev`,
/// else `~/.local/state/tev`.
class StateFolder {
public:
    /// Absolute; empty when the environment names none. Throws std::system_error.
    static std::filesystem::path path();

    /// Makes the folder and those above it that are missing, for their owner only. Throws std::system_error.
    static void make(const std::filesystem::path& folder);
};

}  // namespace Tev

#endif
