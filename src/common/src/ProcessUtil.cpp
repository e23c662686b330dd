#include "ProcessUtil.h"

#include <sys/stat.h>

#include <cstdlib>
#include <string_view>

namespace Tev::ProcessUtil {

namespace {

bool isFileName(const std::string& name) {
    return name.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
}

bool isRegularFile(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

TevReturnT getComponentCfgPath(const std::string& fileName, std::string& path) {
    const char* const configured = std::getenv("TEV_CONFIG_DIR");
    for (const char* const folder : {configured, "/etc/tev"}) {
        if (folder == nullptr || *folder == '\0' || !isFileName(fileName)) {
            continue;
        }
        std::string candidate = std::string(folder) + '/' + fileName;
        if (isRegularFile(candidate)) {
            path = std::move(candidate);
            return TevReturnOk;
        }
    }
    path.clear();
    return TevReturnNotFound;
}

}  // namespace Tev::ProcessUtil
