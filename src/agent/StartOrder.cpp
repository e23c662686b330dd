#include "StartOrder.h"

#include <algorithm>
#include <string>

#include "Failure.h"
#include "Portal.h"

namespace TevAgent {

namespace {

using Components = StartOrder::Components;

bool isMet(const InterfaceId& wanted, const std::vector<InterfaceId>& offered) {
    const bool isPortal =
        wanted.component == Tev::Portal::COMP_ID.componentName && wanted.name == Tev::Portal::COMP_ID.interfaceName;
    return isPortal ||
           std::any_of(offered.begin(), offered.end(), [&](const InterfaceId& offer) { return offer.meets(wanted); });
}

bool isReady(const std::shared_ptr<Component>& component, const std::vector<InterfaceId>& offered) {
    const std::vector<InterfaceId> dependencies = component->dependencies();
    return std::all_of(dependencies.begin(), dependencies.end(),
                       [&](const InterfaceId& wanted) { return isMet(wanted, offered); });
}

std::vector<InterfaceId> offersOf(const std::shared_ptr<Component>& component) {
    std::vector<InterfaceId> offers;
    for (const DalMgmtSpiInterface_1* table : component->offers()) {
        offers.emplace_back(*table);
    }
    return offers;
}

/// A component of `waiting` that `component` waits for. Throws when it waits for what none of them offers.
std::shared_ptr<Component> awaitedBy(const std::shared_ptr<Component>& component,
                                     const std::vector<InterfaceId>& offered, const Components& waiting) {
    std::shared_ptr<Component> awaited;
    for (const InterfaceId& wanted : component->dependencies()) {
        if (isMet(wanted, offered)) {
            continue;
        }
        const auto found = std::find_if(waiting.begin(), waiting.end(), [&](const std::shared_ptr<Component>& other) {
            return isMet(wanted, offersOf(other));
        });
        if (found == waiting.end()) {
            throw Failure(ExitStatus::NotStarted, "component " + component->name() + " depends on " + wanted.text() +
                                                      ", which nobody offers; --component loads what does");
        }
        awaited = *found;
    }
    return awaited;
}

/// Says why none of `waiting` can start.
[[noreturn]] void failFor(const std::vector<InterfaceId>& offered, const Components& waiting) {
    for (const std::shared_ptr<Component>& component : waiting) {
        awaitedBy(component, offered, waiting);
    }
    // All wait for one another: following them from any one leads into a circle.
    Components path;
    std::shared_ptr<Component> next = waiting.front();
    while (std::find(path.begin(), path.end(), next) == path.end()) {
        path.push_back(next);
        next = awaitedBy(next, offered, waiting);
    }
    std::string circle;
    for (auto component = std::find(path.begin(), path.end(), next); component != path.end(); ++component) {
        circle += (*component)->name() + " -> ";
    }
    throw Failure(ExitStatus::NotStarted,
                  "components depend on each other in a circle: " + circle + next->name() + "; leave one of them out");
}

}  // namespace

StartOrder::Components StartOrder::of(const std::vector<InterfaceId>& offeredByAgent, const Components& components) {
    std::vector<InterfaceId> offered = offeredByAgent;
    Components waiting = components;
    Components order;
    while (!waiting.empty()) {
        const auto ready = std::find_if(waiting.begin(), waiting.end(),
                                        [&](const std::shared_ptr<Component>& one) { return isReady(one, offered); });
        if (ready == waiting.end()) {
            failFor(offered, waiting);
        }
        const std::vector<InterfaceId> offers = offersOf(*ready);
        offered.insert(offered.end(), offers.begin(), offers.end());
        order.push_back(*ready);
        waiting.erase(ready);
    }
    return order;
}

}  // namespace TevAgent
