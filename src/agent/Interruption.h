#ifndef TEV_AGENT_INTERRUPTION_H
#define TEV_AGENT_INTERRUPTION_H

#include <sys/types.h>

#include <chrono>
#include <exception>

namespace TevAgent {

/// Thrown once the operator has asked a command to end early. No failure of anything, so that nobody who handles one
/// takes it for one.
class Interrupted : public std::exception {
public:
    const char* what() const noexcept override { return "interrupted"; }
};

/// The operator's wish to end a command early. Process-wide.
class Interruption {
public:
    /// From now on the first SIGINT, SIGTERM or SIGHUP is only noted, and ends the transfers that are under way, so
    /// that the command can end in good order; a second one ends the process at once. Nothing changes for a signal that
    /// is ignored, as nohup has it. To be called before other threads are there.
    static void watch();

    /// Whether a signal was noted. Any thread.
    static bool isRequested();

    /// Whether one of them ends the program, not just the command that is under way: SIGTERM or SIGHUP. Any thread.
    static bool isFinal();

    /// Takes up again what `watch` began, as if no signal had come, so that another command can be carried out; not
    /// when one was final. No command is under way.
    static void forget();

    /// Throws `Interrupted` once a signal was noted. Called between the steps of a command; any thread.
    static void check();

    /// Returns true once `descriptor` can be read, or is at its end, and false when that is not so at `end`, by default
    /// never; throws `Interrupted` as soon as a signal is noted. Any thread.
    static bool waitForInput(int descriptor,
                             std::chrono::steady_clock::time_point end = std::chrono::steady_clock::time_point::max());

    /// Waits for the next byte of `descriptor` and takes it, and nothing behind it. Returns 1; 0 at the end; -1, with
    /// `errno`, when it cannot be read. Throws as `waitForInput`; any thread.
    static ssize_t readByte(int descriptor, char& byte);
};

}  // namespace TevAgent

#endif
