#ifndef TEV_AGENT_INTERRUPTION_H
#define TEV_AGENT_INTERRUPTION_H

namespace TevAgent {

/// The operator's wish to end a command early. Process-wide.
class Interruption {
public:
    /// From now on the first SIGINT is only noted, so that the command can end in good order; a second one ends the
    /// process at once. Nothing changes where SIGINT is ignored. To be called before other threads are there.
    static void watch();

    /// Throws `Failure` (interrupted) once a SIGINT was noted. Called between the steps of a command; any thread.
    static void check();
};

}  // namespace TevAgent

#endif
