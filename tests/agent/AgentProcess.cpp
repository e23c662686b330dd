#include "AgentProcess.h"

#include <algorithm>

namespace TevTest {

AgentOutcome AgentProcess::outcome() {
    const int ended = wait();
    return {ended < 0 ? -1 : ended, std::max(-ended, 0), out(), err(), bytesRead()};
}

AgentOutcome AgentProcess::run(const std::vector<std::string>& arguments, const Setting& setting) {
    return AgentProcess(arguments, setting).outcome();
}

}  // namespace TevTest
