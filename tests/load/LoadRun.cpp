#include "LoadRun.h"

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <thread>

#include "FileText.h"
#include "LoggingWrapper.h"
#include "Portal.h"
#include "SchemaClass.h"

namespace TevAgent {

namespace {

constexpr int warnings = 4;  // log level

std::size_t residentMemory() {
    std::ifstream file("/proc/self/statm");
    std::size_t virtualPages = 0;
    std::size_t residentPages = 0;
    file >> virtualPages >> residentPages;
    return residentPages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t heapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

}  // namespace

LoadRun::LoadRun()
    : logFile(node.folder() + "/log"),
      logVariable("TEV_LOG_FILE", logFile),
      configurationVariable("TEV_CONFIG_DIR", node.folder()),
      stateVariable("TEV_STATE_DIR", node.folder() + "/state"),
      agent(node.inputs()) {
    Tev::LoggingWrapper::instance().set_level(warnings);
    agent.initialize(agent.open(TEV_COMPONENT_LIBRARY));
    agent.start();
    for (unsigned int number = 0; number < clientCount; ++number) {
        clients.emplace_back(agent, node, server, number);
    }
}

LoadRun::Memory LoadRun::work(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    std::atomic<std::size_t> working{clients.size()};
    std::vector<std::thread> threads;
    for (LoadClient& client : clients) {
        threads.emplace_back([&] {
            client.runUntil(end);
            --working;
        });
    }
    std::size_t mostResident = 0;
    while (working > 0) {
        mostResident = std::max(mostResident, residentMemory());
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return {std::max(mostResident, residentMemory()), heapInUse()};
}

std::vector<LoadClient::Kind> LoadRun::kinds() const {
    std::vector<LoadClient::Kind> all = clients.front().kinds();
    for (auto client = std::next(clients.begin()); client != clients.end(); ++client) {
        for (std::size_t i = 0; i < all.size(); ++i) {
            const LoadClient::Kind& kind = client->kinds()[i];
            all[i].count += kind.count;
            all[i].errors.insert(all[i].errors.end(), kind.errors.begin(), kind.errors.end());
        }
    }
    return all;
}

std::string LoadRun::log() const {
    return TevTest::contents(logFile);
}

LoadRun::AllRemains LoadRun::remains() {
    const Remains transactions = agentTransactions();
    return {transactions, componentTransactions(transactions.count), componentIterators()};
}

/// Handles are counted from 1; one that is unknown is not there any more.
LoadRun::Remains LoadRun::agentTransactions() {
    const unsigned long next = agent.transactions().begin();
    agent.transactions().abort(next);
    Remains remains{next - 1, 0};
    for (unsigned long txHandle = 1; txHandle < next; ++txHandle) {
        remains.left += agent.transactions().abort(txHandle) == TevReturnNotFound ? 0 : 1;
    }
    return remains;
}

/// The component tells in its log, and only there, that it does not know a transaction.
LoadRun::Remains LoadRun::componentTransactions(unsigned long count) const {
    void* table = nullptr;
    Tev::Portal::getInterface(SchemaClass::route().component.c_str(), "DalOamSpiTransactionalResource", "2", &table);
    auto& resource = *static_cast<DalOamSpiTransactionalResource_2*>(table);
    Remains remains{count, count};
    std::ifstream log(logFile);
    log.seekg(0, std::ios::end);
    Tev::LoggingWrapper::instance().set_level(Tev::LoggingWrapper::maxLevel);
    for (unsigned long txHandle = 1; txHandle <= count; ++txHandle) {
        resource.finish(txHandle);
    }
    Tev::LoggingWrapper::instance().set_level(warnings);
    for (std::string line; std::getline(log, line);) {
        const bool isUnknown = line.find(" DEBUG ") != std::string::npos &&
                               line.find("Could not find transaction context [") != std::string::npos;
        remains.left -= isUnknown ? 1 : 0;
    }
    return remains;
}

/// An iterator that the component does not know gives -1.
LoadRun::Remains LoadRun::componentIterators() const {
    void* table = nullptr;
    Tev::Portal::getInterface(SchemaClass::route().component.c_str(), "DalOamSpiManagedObject", "1", &table);
    auto& objects = *static_cast<DalOamSpiManagedObject_1*>(table);
    Remains remains{0, 0};
    for (const LoadClient& client : clients) {
        for (void* const iterator : client.iterators()) {
            char* key = nullptr;
            ++remains.count;
            remains.left += objects.nextMo(iterator, &key) == TevReturnFailure ? 0 : 1;
        }
    }
    return remains;
}

}  // namespace TevAgent
