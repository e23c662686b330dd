#ifndef STANDARD_OUTPUT_OF_H
#define STANDARD_OUTPUT_OF_H

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <string>
#include <system_error>

#include "FileText.h"
#include "TempFolder.h"

namespace TevTest {

/// What the process writes to standard output while `action` runs, which lets no exception out. One call at a time.
template <class Action>
std::string standardOutputOf(Action action) {
    const TempFolder folder;
    const std::string file = folder.write("output", "");
    std::cout.flush();
    std::fflush(stdout);
    const int kept = dup(STDOUT_FILENO);
    const int opened = open(file.c_str(), O_WRONLY | O_CLOEXEC);
    if (kept < 0 || opened < 0 || dup2(opened, STDOUT_FILENO) < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot turn standard output to " + file);
    }
    action();
    std::cout.flush();
    std::fflush(stdout);
    dup2(kept, STDOUT_FILENO);
    close(kept);
    close(opened);
    return contents(file);
}

}  // namespace TevTest

#endif
