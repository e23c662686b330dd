#include "Program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "Stopwatch.h"

namespace TevBench {

namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

}  // namespace

ProgramTimes run(const std::vector<std::string>& words, const std::string& output) {
    std::vector<char*> arguments;
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    int status = -1;
    rusage usage{};
    const double elapsed = secondsOf([&] {
        pid_t child = -1;
        if (posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0) {
            TEMP_FAILURE_RETRY(wait4(child, &status, 0, &usage));
        }
    });
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) {
        throw std::runtime_error(words[0] + " fails");
    }
    return {elapsed, seconds(usage.ru_utime) + seconds(usage.ru_stime)};
}

}  // namespace TevBench
