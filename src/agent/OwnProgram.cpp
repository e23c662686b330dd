#include "OwnProgram.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <system_error>

#include "Failure.h"

namespace TevAgent {

namespace {

void check(int error) {
    if (error != 0) {
        throw Failure(ExitStatus::OperationFailed,
                      "the check cannot be started: " + std::generic_category().message(error));
    }
}

class SpawnSettings {
public:
    explicit SpawnSettings(const OwnProgram::Surroundings& surroundings) : SpawnSettings() {
        check(posix_spawnattr_setflags(&attributes, surroundings.isApart ? POSIX_SPAWN_SETPGROUP : 0));
        check(posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
        if (surroundings.output == -1) {
            check(posix_spawn_file_actions_addclose(&actions, STDOUT_FILENO));
        } else {
            check(posix_spawn_file_actions_adddup2(&actions, surroundings.output, STDOUT_FILENO));
        }
        check(posix_spawn_file_actions_adddup2(&actions, surroundings.error, STDERR_FILENO));
    }

    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }

    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};

private:
    SpawnSettings() {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
    }
};

}  // namespace

pid_t OwnProgram::start(const std::vector<std::string>& arguments, const Surroundings& surroundings) {
    std::vector<char*> words = {const_cast<char*>("tev-agent")};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    const SpawnSettings settings(surroundings);
    pid_t process = -1;
    check(posix_spawn(&process, "/proc/self/exe", &settings.actions, &settings.attributes, words.data(), environ));
    return process;
}

}  // namespace TevAgent
