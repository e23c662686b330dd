#include "AgentProcess.h"

#include <algorithm>

#include "FileText.h"
#include "Wait.h"

namespace TevTest {

AgentOutcome AgentProcess::outcome() {
    const int ended = wait();
    return {ended < 0 ? -1 : ended, std::max(-ended, 0), out(), err(), bytesRead()};
}

void AgentProcess::waitUntilAsleep() {
    const std::string file = "/proc/" + std::to_string(id()) + "/stat";
    waitUntil([&] { return hasEnded() || contents(file).find(") S ") != std::string::npos; });
}

AgentOutcome AgentProcess::run(const std::vector<std::string>& arguments, const Setting& setting) {
    return AgentProcess(arguments, setting).outcome();
}

}  // namespace TevTest
