#ifndef LOG_TO_NOWHERE_H
#define LOG_TO_NOWHERE_H

#include <cstdlib>

#include "LoggingWrapper.h"

namespace TevFuzz {

/// Has every record of the process's log made and none kept. To be made before the log is first used.
struct LogToNowhere {
    LogToNowhere() {
        setenv("TEV_LOG_FILE", "/dev/null", 1);
        Tev::LoggingWrapper::instance().set_level(Tev::LoggingWrapper::maxLevel);
    }
};

}  // namespace TevFuzz

#endif
