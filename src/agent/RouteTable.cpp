#include "RouteTable.h"

#include <algorithm>
#include <utility>

#include "Failure.h"

namespace TevAgent {

namespace {

/// Takes the first RDN off `rest`, and gives its class. The DN may be malformed: that is for its owner to judge.
std::string_view takeClass(std::string_view& rest) {
    const std::string_view rdn = rest.substr(0, rest.find(','));
    rest.remove_prefix(std::min(rdn.size() + 1, rest.size()));
    return rdn.substr(0, rdn.find('='));
}

/// Whether `classes` are those of the RDNs of `dn`.
bool areClassesOf(std::string_view dn, const std::vector<std::string>& classes) {
    const auto isNext = [&dn](const std::string& className) { return !dn.empty() && takeClass(dn) == className; };
    return std::all_of(classes.begin(), classes.end(), isNext) && dn.empty();
}

}  // namespace

RouteTable::RouteTable(std::vector<Route> routeList) : routes(std::move(routeList)) {
    for (const Route& route : routes) {
        const Route& first = *find(route.className, [&](const Route& other) { return other.parent == route.parent; });
        if (first.component != route.component) {
            throw Failure(ExitStatus::NotStarted, "class " + route.className + " is routed to two components, " +
                                                      first.component + " and " + route.component +
                                                      "; take the route to the latter out of the file of --objects");
        }
    }
}

const Route* RouteTable::ofDn(std::string_view dn) const {
    for (std::string_view rest = dn; !rest.empty();) {
        const std::size_t begin = dn.size() - rest.size();
        const std::string_view parentDn = dn.substr(0, begin == 0 ? 0 : begin - 1);
        if (const Route* const route = ofClass(parentDn, takeClass(rest))) {
            return route;
        }
    }
    return nullptr;
}

const Route* RouteTable::ofClass(std::string_view parentDn, std::string_view className) const {
    return find(className, [&](const Route& route) { return areClassesOf(parentDn, route.parent); });
}

template <class IsExact>
const Route* RouteTable::find(std::string_view className, const IsExact& isExact) const {
    const Route* first = nullptr;
    for (const Route& route : routes) {
        if (route.className == className) {
            if (isExact(route)) {
                return &route;
            }
            first = first == nullptr ? &route : first;
        }
    }
    return first;
}

}  // namespace TevAgent
