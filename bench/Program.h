#ifndef PROGRAM_H
#define PROGRAM_H

#include <string>
#include <vector>

namespace TevBench {

/// What a program took from its start to its end, in seconds.
struct ProgramTimes {
    double elapsed;
    double processor;  ///< by the user and by the system for it
};

/// Runs a program, `words[0]` is its path. Its output goes to the file `output`. Throws std::runtime_error when it
/// fails.
ProgramTimes run(const std::vector<std::string>& words, const std::string& output = "/dev/null");

}  // namespace TevBench

#endif
