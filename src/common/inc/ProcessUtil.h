#ifndef TEV_PROCESS_UTIL_H
#define TEV_PROCESS_UTIL_H

#include <string>

#include "TevCommonApi.h"
#include "TevReturnT.h"

namespace Tev::ProcessUtil {

/// Finds a component's configuration file: looks for a regular file named `fileName` in the folder that
/// `TEV_CONFIG_DIR` names, then in `/etc/tev`. Returns 0 and sets `path` to where it is, or -2 and makes `path` empty.
/// An empty name, or one with a slash, names no such file.
///
/// Thread-safe as long as no other thread changes the environment.
TEV_COMMON_API TevReturnT getComponentCfgPath(const std::string& fileName, std::string& path);

}  // namespace Tev::ProcessUtil

#endif
