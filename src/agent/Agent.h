#ifndef TEV_AGENT_AGENT_H
#define TEV_AGENT_AGENT_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ComponentLibrary.h"
#include "ModelRepository.h"
#include "ObjectStore.h"
#include "PortalService.h"
#include "Router.h"
#include "TransactionService.h"

namespace TevAgent {

/// The host of components: every service that they need, and their life from loading to unloading.
///
/// At its end the components are stopped, terminated and unloaded, in reverse order. Used by one thread, but for the
/// services, which are thread-safe; there is one agent at a time.
class Agent {
public:
    /// What an agent works on; an empty text where there is none.
    struct Inputs {
        std::string models;         ///< folder of model files
        std::string objects;        ///< file of managed objects
        std::string configuration;  ///< file, handed to each component
    };

    /// Reads the inputs and offers the services. Says which model files are left out. Throws `Failure` (not started)
    /// when an input cannot be used.
    explicit Agent(const Inputs& agentInputs);
    ~Agent();
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

    /// Loads a component library. Throws `Failure` (not started).
    ComponentLibrary& open(const std::string& path);

    /// Initializes a loaded library and returns the name of the component that it registered, the first one when there
    /// are several. Throws `Failure` (not started), also when it registered none.
    std::string initialize(ComponentLibrary& library);

    /// Starts and stops the components, as `PortalService` does.
    void start();
    TevReturnT stop();

    Router& router() { return *routerService; }
    TransactionService& transactions() { return transactionService; }

    /// The objects that no component owns, and the routes to those that one does, Schema's included.
    const ObjectStore& objects() const { return store; }
    std::vector<Route> routes() const;

    /// The DN that Schema instances stand under: the first SysM object, or a usual DN when there are no objects. Throws
    /// `Failure` (operation failed) when the managed objects have no SysM object.
    std::string schemaParent() const;

    /// The DN of the Schema instance of that id.
    std::string schemaDn(const std::string& schemaId) const;

    /// The bytes of the file of the model that the Schema instance of that id shows; nothing when there is none.
    std::optional<std::uintmax_t> modelSize(const std::string& schemaId) const;

    /// How long one transfer may take, as the component's configuration says; 0 or less for no limit.
    std::chrono::milliseconds transferTimeout() const { return timeout; }

private:
    const Inputs inputs;
    std::chrono::milliseconds timeout{};
    ObjectStore store;
    std::unique_ptr<ModelRepository> repository;
    PortalService portal;
    TransactionService transactionService;
    std::unique_ptr<Router> routerService;
    std::vector<std::unique_ptr<ComponentLibrary>> libraries;
};

}  // namespace TevAgent

#endif
