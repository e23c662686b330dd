#include "RouteTable.h"

#include <utility>

#include "Failure.h"
#include "Text.h"

namespace TevAgent {

namespace {

/// The classes of a DN's RDNs. The DN may be malformed: that is for its owner to judge.
std::vector<std::string> classesOf(std::string_view dn) {
    std::vector<std::string> classes;
    for (const std::string_view rdn : Text::split(dn, ',')) {
        classes.emplace_back(rdn.substr(0, rdn.find('=')));
    }
    return classes;
}

}  // namespace

RouteTable::RouteTable(std::vector<Route> routeList) : routes(std::move(routeList)) {
    for (const Route& route : routes) {
        const Route& first = *find(route.parent, route.className);
        if (first.component != route.component) {
            throw Failure(ExitStatus::NotStarted, "class " + route.className + " is routed to two components, " +
                                                      first.component + " and " + route.component);
        }
    }
}

const Route* RouteTable::ofDn(std::string_view dn) const {
    std::vector<std::string> parents;
    for (const std::string& className : classesOf(dn)) {
        if (const Route* const route = find(parents, className)) {
            return route;
        }
        parents.push_back(className);
    }
    return nullptr;
}

const Route* RouteTable::ofClass(std::string_view parentDn, std::string_view className) const {
    return find(parentDn.empty() ? std::vector<std::string>() : classesOf(parentDn), className);
}

const Route* RouteTable::find(const std::vector<std::string>& parents, std::string_view className) const {
    const Route* first = nullptr;
    for (const Route& route : routes) {
        if (route.className == className) {
            if (route.parent == parents) {
                return &route;
            }
            first = first == nullptr ? &route : first;
        }
    }
    return first;
}

}  // namespace TevAgent
