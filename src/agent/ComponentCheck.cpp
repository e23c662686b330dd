#include "ComponentCheck.h"

#include <array>
#include <utility>

#include "Diagnostics.h"
#include "Failure.h"
#include "Operation.h"
#include "SchemaClass.h"

namespace TevAgent {

namespace {

std::string countOf(const std::vector<std::string>& keys) {
    return std::to_string(keys.size()) + (keys.size() == 1 ? " instance" : " instances");
}

}  // namespace

ComponentCheck::ComponentCheck(Agent& hostAgent, std::string libraryPath)
    : agent(hostAgent), path(std::move(libraryPath)) {}

bool ComponentCheck::run(const std::function<void(const CheckResult&)>& tell) {
    struct Item {
        const char* name;
        std::string (ComponentCheck::*attempt)();
    };
    const std::array<Item, 5> items = {{{"loads", &ComponentCheck::load},
                                        {"tables well-formed", &ComponentCheck::verifyTables},
                                        {"starts and stops", &ComponentCheck::startAndStop},
                                        {"lists", &ComponentCheck::list},
                                        {"reads", &ComponentCheck::read}}};
    std::string failed;
    for (const Item& item : items) {
        if (!failed.empty()) {
            tell({item.name, false, "not tried, because \"" + failed + "\" failed"});
            continue;
        }
        try {
            tell({item.name, true, (this->*item.attempt)()});
        } catch (const Failure& e) {
            failed = item.name;
            tell({item.name, false, e.what()});
        }
    }
    return failed.empty();
}

std::string ComponentCheck::load() {
    library = &agent.open(path);
    return library->path();
}

std::string ComponentCheck::verifyTables() {
    component = agent.initialize(*library);
    return "component " + component;
}

std::string ComponentCheck::startAndStop() {
    agent.start();
    Diagnostics::Capture capture;
    if (agent.stop() != TevReturnOk) {
        throw Failure(ExitStatus::OperationFailed, capture.takeOr("component " + component + " did not stop"));
    }
    return "";
}

std::string ComponentCheck::list() {
    const std::string& owner = SchemaClass::route().component;
    if (component != owner) {
        throw Failure(ExitStatus::OperationFailed, std::string("class ") + SchemaClass::name +
                                                       " belongs to component " + owner + ", not to " + component);
    }
    agent.start();
    Operation operation(agent);
    keys = operation.reader().keys(agent.schemaParent(), SchemaClass::name);
    operation.commit();
    return countOf(keys);
}

std::string ComponentCheck::read() {
    Operation operation(agent);
    for (const std::string& key : keys) {
        operation.reader().read(agent.schemaDn(key), SchemaClass::attributes());
    }
    operation.commit();
    return countOf(keys);
}

}  // namespace TevAgent
