#ifndef TEV_AGENT_LOAD_CLIENT_H
#define TEV_AGENT_LOAD_CLIENT_H

#include <chrono>
#include <random>
#include <string>
#include <vector>

#include "Agent.h"
#include "DalOamSpiManagedObject.h"
#include "DalOamSpiTransactionalResource.h"
#include "LoadNode.h"
#include "SftpServer.h"

namespace TevAgent {

/// One of the agent's many clients: lists, reads and exports in turn, and checks all that it gets. Used by one thread
/// at a time; what it is made with outlives it.
class LoadClient {
public:
    /// How often each was done, and what was wrong with it, in one sentence each.
    struct Kind {
        std::string name;
        unsigned long count = 0;
        std::vector<std::string> errors{};
    };

    /// `number` tells the client from all others.
    LoadClient(Agent& hostAgent, const LoadNode& loadNode, const TevTest::SftpServer& sftpServer, unsigned int number);

    /// Does each at least once.
    void runUntil(std::chrono::steady_clock::time_point end);

    /// Listings of all instances, reads of all attributes of a hundred instances, and exports of one model.
    const std::vector<Kind>& kinds() const { return allKinds; }

    /// The component's iterator of each listing; an address may come back.
    const std::vector<void*>& iterators() const { return allIterators; }

private:
    using Work = void (LoadClient::*)();

    void attempt(Kind& kind, Work work);
    void list();
    void read();
    void exportModel();
    const LoadNode::SchemaModel& anyModel();

    Agent& agent;
    const LoadNode& node;
    const std::string remoteFile;
    const std::string uri;
    const std::string password;
    const std::string parentDn;
    DalOamSpiManagedObject_1& objects;
    DalOamSpiTransactionalResource_2& resource;
    std::mt19937 generator;
    std::vector<Kind> allKinds = {{"list"}, {"read"}, {"export"}};
    std::vector<void*> allIterators;
};

}  // namespace TevAgent

#endif
