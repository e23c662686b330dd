#include "Descendants.h"

#include <sys/prctl.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace TevAgent {

void Descendants::adopt() {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
}

std::vector<pid_t> Descendants::children() {
    std::vector<pid_t> ids;
    std::error_code ignored;
    const std::filesystem::directory_iterator end;
    for (auto thread = std::filesystem::directory_iterator("/proc/self/task", ignored); thread != end;
         thread.increment(ignored)) {
        std::ifstream list(thread->path() / "children");
        for (pid_t id = 0; list >> id;) {
            ids.push_back(id);
        }
    }
    return ids;
}

std::size_t Descendants::running() {
    const std::vector<pid_t> ids = children();
    return static_cast<std::size_t>(std::count_if(ids.begin(), ids.end(), [](pid_t id) {
        siginfo_t ended{};
        return waitid(P_PID, static_cast<id_t>(id), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid == 0;
    }));
}

}  // namespace TevAgent
