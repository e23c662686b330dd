#ifndef TEV_AGENT_FAILURE_H
#define TEV_AGENT_FAILURE_H

#include <stdexcept>
#include <string>

#include "ExitStatus.h"

namespace TevAgent {

/// Why a command ends early: one sentence for the operator, and how the program ends then.
class Failure : public std::runtime_error {
public:
    Failure(ExitStatus exitStatus, const std::string& sentence)
        : std::runtime_error(sentence), programStatus(exitStatus) {}

    ExitStatus status() const noexcept { return programStatus; }

private:
    ExitStatus programStatus;
};

}  // namespace TevAgent

#endif
