#ifndef TEV_AGENT_PROGRAM_H
#define TEV_AGENT_PROGRAM_H

namespace TevAgent {

/// The program `tev-agent`.
class Program {
public:
    /// What `main` does with its arguments. Returns the exit status; says why it is not 0.
    static int run(int argumentCount, const char* const* arguments);
};

}  // namespace TevAgent

#endif
