#ifndef TEV_AGENT_COMMAND_LINE_H
#define TEV_AGENT_COMMAND_LINE_H

#include "Settings.h"

namespace TevAgent {

/// The program's arguments.
class CommandLine {
public:
    /// Takes the arguments of `main` apart. Throws `Failure` (wrong usage) with what is wrong.
    static Settings parse(int argumentCount, const char* const* arguments);
};

}  // namespace TevAgent

#endif
