#include "StateFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace Tev {

namespace {

namespace fs = std::filesystem;

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

}  // namespace

fs::path StateFolder::path() {
    if (const std::string given = variable("TEV_STATE_DIR"); !given.empty()) {
        return fs::absolute(given);
    }
    if (geteuid() == 0) {
        return "/var/lib/tev";
    }
    if (const std::string base = variable("XDG_STATE_HOME"); fs::path(base).is_absolute()) {
        return fs::path(base) / "tev";
    }
    if (const std::string home = variable("HOME"); fs::path(home).is_absolute()) {
        return fs::path(home) / ".local/state/tev";
    }
    return {};
}

void StateFolder::make(const fs::path& folder) {
    fs::path part;
    for (const fs::path& name : folder) {
        part /= name;
        if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) {
            const std::error_code reason(errno, std::generic_category());
            std::error_code ignored;
            if (!fs::is_directory(part, ignored)) {
                throw fs::filesystem_error("mkdir", part, reason);
            }
        }
    }
}

}  // namespace Tev
