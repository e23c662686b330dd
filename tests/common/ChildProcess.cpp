#include "ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "FileText.h"

namespace TevTest {

namespace {

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> list;
    for (std::string& text : texts) {
        list.push_back(text.data());
    }
    list.push_back(nullptr);
    return list;
}

std::vector<std::string> withoutOurVariables() {
    std::vector<std::string> kept;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (std::strncmp(*variable, "TEV_", 4) != 0) {
            kept.emplace_back(*variable);
        }
    }
    return kept;
}

/// What happens to the child's descriptors.
class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void redirect(int target, int source, const std::string& file) {
        if (source >= 0) {
            posix_spawn_file_actions_adddup2(&actions, source, target);
        } else {
            posix_spawn_file_actions_addopen(&actions, target, file.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        }
    }
    void close(int target) { posix_spawn_file_actions_addclose(&actions, target); }

    const posix_spawn_file_actions_t* get() const { return &actions; }

private:
    posix_spawn_file_actions_t actions{};
};

}  // namespace

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           const std::vector<std::string>& environment, Streams streams) {
    std::vector<std::string> argumentTexts{program};
    argumentTexts.insert(argumentTexts.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environmentTexts = withoutOurVariables();
    environmentTexts.insert(environmentTexts.end(), environment.begin(), environment.end());

    FileActions actions;
    actions.redirect(STDOUT_FILENO, streams.out, folder.path() / "out");
    if (streams.closeErr) {
        actions.close(STDERR_FILENO);
    } else {
        actions.redirect(STDERR_FILENO, streams.err, folder.path() / "err");
    }
    const int error = posix_spawn(&processId, program.c_str(), actions.get(), nullptr, pointers(argumentTexts).data(),
                                  pointers(environmentTexts).data());
    if (error != 0) {
        processId = -1;
        throw std::system_error(error, std::generic_category(), program);
    }
}

ChildProcess::~ChildProcess() {
    wait();
}

int ChildProcess::wait() {
    int status = 0;
    if (processId < 0 || TEMP_FAILURE_RETRY(waitpid(processId, &status, 0)) < 0) {
        return -1;
    }
    processId = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::string ChildProcess::out() const {
    return contents(folder.path() / "out");
}

std::string ChildProcess::err() const {
    return contents(folder.path() / "err");
}

}  // namespace TevTest
