#include "Router.h"

#include <utility>

#include "Barrier.h"
#include "Diagnostics.h"

namespace TevAgent {

struct Router::Table {
    static DalOamSpiManagedObject_1 objects;
    static DalOamSpiTransactionalResource_2 resource;
};

DalOamSpiManagedObject_1 Router::Table::objects = {{componentName, "DalOamSpiManagedObject", "1"},
                                                   TableEntry<&Router::setMoAttribute>::call,
                                                   TableEntry<&Router::getMoAttribute>::call,
                                                   TableEntry<&Router::newMoIterator>::call,
                                                   TableEntry<&Router::nextMo>::call,
                                                   TableEntry<&Router::createMo>::call,
                                                   TableEntry<&Router::deleteMo>::call,
                                                   TableEntry<&Router::action>::call};

DalOamSpiTransactionalResource_2 Router::Table::resource = {{componentName, "DalOamSpiTransactionalResource", "2"},
                                                            TableEntry<&Router::join>::call,
                                                            TableEntry<&Router::pass>::call,
                                                            TableEntry<&Router::pass>::call,
                                                            TableEntry<&Router::pass>::call,
                                                            TableEntry<&Router::finish>::call,
                                                            TableEntry<&Router::validate>::call};

namespace {

/// A component may leave anything in the result of a call that failed.
template <class Result>
TevReturnT clearedUnlessOk(TevReturnT code, Result*& result) {
    if (code != TevReturnOk) {
        result = nullptr;
    }
    return code;
}

std::string nameOf(const Route* route) {
    return route == nullptr ? "the object store" : "component " + route->component;
}

}  // namespace

Router::Router(const ObjectStore& objectStore, PortalService& portalService, TransactionService& transactionService,
               std::vector<Route> routes)
    : store(objectStore), portal(portalService), transactions(transactionService), routeTable(std::move(routes)) {}

DalOamSpiManagedObject_1* Router::table() {
    return &Table::objects;
}

template <class Call>
TevReturnT Router::callOwner(unsigned long txHandle, const Route& route, const char* operation, Call&& call) {
    DalOamSpiManagedObject_1* owner = nullptr;
    const TevReturnT code = reach(txHandle, route, owner);
    return code != TevReturnOk ? code : Barrier::call(route.component, operation, [&] { return call(*owner); });
}

TevReturnT Router::setMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                                  DalMoAttributeValueContainer* value) {
    if (dn == nullptr || attributeName == nullptr || value == nullptr) {
        return TevReturnInvalidArgument;
    }
    const Route* const route = routeTable.ofDn(dn);
    if (route == nullptr) {
        return refuseChange(dn);
    }
    return callOwner(txHandle, *route, "setMoAttribute", [&](const DalOamSpiManagedObject_1& owner) {
        return owner.setMoAttribute(txHandle, dn, attributeName, value);
    });
}

TevReturnT Router::getMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                                  DalMoAttributeValueContainer** result) {
    if (dn == nullptr || attributeName == nullptr || result == nullptr) {
        return TevReturnInvalidArgument;
    }
    *result = nullptr;
    if (const Route* const route = routeTable.ofDn(dn)) {
        const TevReturnT code =
            callOwner(txHandle, *route, "getMoAttribute", [&](const DalOamSpiManagedObject_1& owner) {
                return owner.getMoAttribute(txHandle, dn, attributeName, result);
            });
        return clearedUnlessOk(code, *result);
    }
    const ObjectAttribute* const attribute = store.attribute(dn, attributeName);
    const TevReturnT code = attribute == nullptr ? TevReturnNotFound : join(txHandle);
    if (code == TevReturnOk) {
        const Tev::AnnotatedLock lock(mutex);
        *result = memories[txHandle].copyOf(*attribute);
    }
    return code;
}

TevReturnT Router::newMoIterator(unsigned long txHandle, const char* parentDn, const char* className, void** iterator) {
    if (parentDn == nullptr || className == nullptr || iterator == nullptr) {
        return TevReturnInvalidArgument;
    }
    *iterator = nullptr;
    Iterator listing;
    listing.txHandle = txHandle;
    listing.route = routeTable.ofClass(parentDn, className);
    if (listing.route != nullptr) {
        const TevReturnT code =
            callOwner(txHandle, *listing.route, "newMoIterator", [&](DalOamSpiManagedObject_1& owner) {
                listing.owner = &owner;
                return owner.newMoIterator(txHandle, parentDn, className, &listing.inner);
            });
        return code != TevReturnOk ? code : keep(listing, iterator);
    }
    if (!store.hasClass(parentDn, className)) {
        return TevReturnNotFound;
    }
    listing.keys = store.keys(parentDn, className);
    return keep(listing, iterator);
}

TevReturnT Router::nextMo(void* iterator, char** result) {
    if (result == nullptr) {
        return TevReturnInvalidArgument;
    }
    *result = nullptr;
    const std::shared_ptr<Iterator> listing = find(iterator);
    if (listing == nullptr) {
        return TevReturnFailure;
    }
    if (listing->route != nullptr) {
        const TevReturnT code = Barrier::call(listing->route->component, "nextMo",
                                              [&] { return listing->owner->nextMo(listing->inner, result); });
        return clearedUnlessOk(code, *result);
    }
    const Tev::AnnotatedLock lock(mutex);
    if (listing->next < listing->keys.size()) {
        *result = memories[listing->txHandle].copyOf(listing->keys[listing->next]);
        ++listing->next;
    }
    return TevReturnOk;
}

TevReturnT Router::createMo(unsigned long txHandle, const char* parentDn, const char* className, const char* keyName,
                            DalMoAttributeValueContainer* keyValue) {
    if (parentDn == nullptr || className == nullptr || keyName == nullptr || keyValue == nullptr) {
        return TevReturnInvalidArgument;
    }
    const Route* const route = routeTable.ofClass(parentDn, className);
    if (route == nullptr) {
        return *parentDn == '\0' ? TevReturnFailure : refuseChange(parentDn);
    }
    return callOwner(txHandle, *route, "createMo", [&](const DalOamSpiManagedObject_1& owner) {
        return owner.createMo(txHandle, parentDn, className, keyName, keyValue);
    });
}

TevReturnT Router::deleteMo(unsigned long txHandle, const char* dn) {
    if (dn == nullptr) {
        return TevReturnInvalidArgument;
    }
    const Route* const route = routeTable.ofDn(dn);
    if (route == nullptr) {
        return refuseChange(dn);
    }
    return callOwner(txHandle, *route, "deleteMo",
                     [&](const DalOamSpiManagedObject_1& owner) { return owner.deleteMo(txHandle, dn); });
}

TevReturnT Router::action(unsigned long txHandle, const char* dn, const char* actionName,
                          DalMoAttributeValueContainer** parameters, DalMoAttributeValueContainer** result) {
    if (dn == nullptr || actionName == nullptr || parameters == nullptr || result == nullptr) {
        return TevReturnInvalidArgument;
    }
    *result = nullptr;
    const Route* const route = routeTable.ofDn(dn);
    if (route == nullptr) {
        return refuseChange(dn);
    }
    const TevReturnT code = callOwner(txHandle, *route, "action", [&](const DalOamSpiManagedObject_1& owner) {
        return owner.action(txHandle, dn, actionName, parameters, result);
    });
    return clearedUnlessOk(code, *result);
}

std::string Router::routedClassOf(const std::string& dn) const {
    const Route* const route = routeTable.ofDn(dn);
    return route == nullptr ? "" : route->className;
}

std::string Router::ownerOf(const std::string& dn) const {
    return nameOf(routeTable.ofDn(dn));
}

std::string Router::ownerOf(const std::string& parentDn, const std::string& className) const {
    return nameOf(routeTable.ofClass(parentDn, className));
}

TevReturnT Router::reach(unsigned long txHandle, const Route& route, DalOamSpiManagedObject_1*& owner) {
    // Registered tables are checked: whoever offers managed objects takes part in transactions too.
    DalMgmtSpiInterface_1* const objects = portal.find({route.component.c_str(), "DalOamSpiManagedObject", "1"});
    DalMgmtSpiInterface_1* const resource =
        portal.find({route.component.c_str(), "DalOamSpiTransactionalResource", "2"});
    if (objects == nullptr || resource == nullptr) {
        Diagnostics::say(
            "class " + route.className + " belongs to component " + route.component +
            ", which is not there or offers no managed objects; the option --component of tev-agent loads it");
        return TevReturnNotFound;
    }
    owner = reinterpret_cast<DalOamSpiManagedObject_1*>(objects);
    return transactions.join(txHandle, *reinterpret_cast<DalOamSpiTransactionalResource_2*>(resource));
}

TevReturnT Router::refuseChange(const std::string& dn) const {
    return store.exists(dn) ? TevReturnFailure : TevReturnNotFound;
}

TevReturnT Router::keep(const Iterator& listing, void** iterator) {
    const TevReturnT code = join(listing.txHandle);
    if (code == TevReturnOk) {
        const Tev::AnnotatedLock lock(mutex);
        // A number that is never used again, not an address: a handle of a finished transaction stays unknown.
        *iterator = reinterpret_cast<void*>(++lastIterator);
        iterators[*iterator] = std::make_shared<Iterator>(listing);
    }
    return code;
}

std::shared_ptr<Router::Iterator> Router::find(void* iterator) {
    const Tev::AnnotatedLock lock(mutex);
    const auto found = iterators.find(iterator);
    return found == iterators.end() ? nullptr : found->second;
}

TevReturnT Router::join(unsigned long txHandle) {
    return transactions.registerParticipant(txHandle, &Table::resource);
}

TevReturnT Router::pass(unsigned long) {
    return TevReturnOk;
}

TevReturnT Router::finish(unsigned long txHandle) {
    const Tev::AnnotatedLock lock(mutex);
    memories.erase(txHandle);
    for (auto iterator = iterators.begin(); iterator != iterators.end();) {
        iterator = iterator->second->txHandle == txHandle ? iterators.erase(iterator) : std::next(iterator);
    }
    return TevReturnOk;
}

TevReturnT Router::validate(unsigned long, bool* result) {
    *result = true;
    return TevReturnOk;
}

}  // namespace TevAgent
