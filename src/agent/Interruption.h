#ifndef TEV_AGENT_INTERRUPTION_H
#define TEV_AGENT_INTERRUPTION_H

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
    /// From now on the first SIGINT is only noted, so that the command can end in good order; a second one ends the
    /// process at once. Nothing changes where SIGINT is ignored. To be called before other threads are there.
    static void watch();

    /// Throws `Interrupted` once a SIGINT was noted. Called between the steps of a command; any thread.
    static void check();
};

}  // namespace TevAgent

#endif
