#ifndef TEV_AGENT_LOAD_RUN_H
#define TEV_AGENT_LOAD_RUN_H

#include <chrono>
#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "Agent.h"
#include "EnvironmentVariable.h"
#include "LoadClient.h"
#include "LoadNode.h"
#include "SftpServer.h"

namespace TevAgent {

/// Eight clients at once of an agent with 5,000 models, the component and a private SFTP server; and what is left of
/// their work at the end. Used by one thread; there is one in a process, as the log goes to its file.
class LoadRun {
public:
    /// Throws std::exception when agent or server do not start.
    LoadRun();

    /// What the process needs, in bytes: pages that are in memory, and what the C library has handed out and not got
    /// back.
    struct Memory {
        std::size_t resident;
        std::size_t heap;
    };

    /// Lets the clients work for so long. Returns the memory afterwards, when they have all come to rest, but the most
    /// of the resident memory.
    Memory work(std::chrono::milliseconds time);

    /// How often each kind of work was done by all clients, and what was wrong with it.
    std::vector<LoadClient::Kind> kinds() const;

    /// What was logged as an error or a warning.
    std::string log() const;

    /// What was there, and how much of it is still there. To be called once, when there is no more to do.
    struct Remains {
        unsigned long count;
        unsigned long left;
    };
    struct AllRemains {
        Remains agentTransactions;
        Remains componentTransactions;
        Remains componentIterators;
    };
    AllRemains remains();

private:
    static constexpr std::size_t modelCount = 5000;
    static constexpr unsigned int clientCount = 8;

    Remains agentTransactions();
    Remains componentTransactions(unsigned long count) const;
    Remains componentIterators() const;

    const LoadNode node{modelCount};
    const std::string logFile;
    const TevTest::EnvironmentVariable logVariable;
    const TevTest::EnvironmentVariable configurationVariable;
    const TevTest::EnvironmentVariable stateVariable;
    const TevTest::SftpServer server;
    Agent agent;
    std::deque<LoadClient> clients;
};

}  // namespace TevAgent

#endif
