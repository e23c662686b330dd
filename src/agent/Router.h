#ifndef TEV_AGENT_ROUTER_H
#define TEV_AGENT_ROUTER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "AnnotatedMutex.h"
#include "DalOamSpiManagedObject.h"
#include "ObjectStore.h"
#include "OnlyOne.h"
#include "PortalService.h"
#include "RouteTable.h"
#include "TransactionMemory.h"
#include "TransactionService.h"

namespace TevAgent {

/// The one way to the managed objects of the whole node: a call for a routed class goes to the component that owns it,
/// which joins the transaction first; all others are answered out of the object store, which is read-only.
///
/// The operations are those of the table, `DalOamSpiManagedObject_1`, and return its codes; -2 also for an unknown
/// transaction or a routed class whose component is not there, or the code with which the component did not join. What
/// the store gives out is copied for the transaction. No result is set where the code is not 0. Thread-safe.
class Router : public OnlyOne<Router> {
public:
    static constexpr const char* componentName = "DalOamSpiCmRouterService";

    /// Everything passed in outlives the router.
    Router(const ObjectStore& objectStore, PortalService& portalService, TransactionService& transactionService,
           std::vector<Route> routes);

    /// The table that components are given.
    static DalOamSpiManagedObject_1* table();

    TevReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                              DalMoAttributeValueContainer* value);
    TevReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                              DalMoAttributeValueContainer** result);
    TevReturnT newMoIterator(unsigned long txHandle, const char* parentDn, const char* className, void** iterator);
    TevReturnT nextMo(void* iterator, char** result);
    TevReturnT createMo(unsigned long txHandle, const char* parentDn, const char* className, const char* keyName,
                        DalMoAttributeValueContainer* keyValue);
    TevReturnT deleteMo(unsigned long txHandle, const char* dn);
    TevReturnT action(unsigned long txHandle, const char* dn, const char* actionName,
                      DalMoAttributeValueContainer** parameters, DalMoAttributeValueContainer** result);

    /// The class by whose route the object `dn` belongs to a component; empty for one of the store.
    std::string routedClassOf(const std::string& dn) const;

    /// The names of the attributes of the object `dn` of the store; none for any other.
    std::vector<std::string> attributeNames(const std::string& dn) const { return store.attributeNames(dn); }

    /// Who answers for the object `dn`, as a sentence names it: "component <name>", or "the object store".
    std::string ownerOf(const std::string& dn) const;

    /// The same for the objects of `className` directly under `parentDn`.
    std::string ownerOf(const std::string& parentDn, const std::string& className) const;

private:
    struct Table;

    struct Iterator {
        unsigned long txHandle = 0;
        const Route* route = nullptr;  ///< null for a listing of the store
        DalOamSpiManagedObject_1* owner = nullptr;
        void* inner = nullptr;          ///< the owner's iterator
        std::vector<std::string> keys;  ///< of a listing of the store
        std::size_t next = 0;
    };

    /// Finds the table of the component that owns a routed class, and makes that component join the transaction.
    TevReturnT reach(unsigned long txHandle, const Route& route, DalOamSpiManagedObject_1*& owner);

    /// Carries out `call`, given the owner's table, behind the barrier.
    template <class Call>
    TevReturnT callOwner(unsigned long txHandle, const Route& route, const char* operation, Call&& call);

    /// What changing an object of the store gives.
    TevReturnT refuseChange(const std::string& dn) const;

    // The router is a participant of every transaction in which it hands out something of its own.
    TevReturnT join(unsigned long txHandle);
    TevReturnT pass(unsigned long txHandle);
    TevReturnT finish(unsigned long txHandle);
    TevReturnT validate(unsigned long txHandle, bool* result);

    /// Gives the listing a handle, which ends with its transaction.
    TevReturnT keep(const Iterator& listing, void** iterator);

    /// The listing of a handle, or null.
    std::shared_ptr<Iterator> find(void* iterator);

    const ObjectStore& store;
    PortalService& portal;
    TransactionService& transactions;
    const RouteTable routeTable;

    Tev::AnnotatedMutex mutex;
    std::map<unsigned long, TransactionMemory> memories TEV_GUARDED_BY(mutex);
    std::map<void*, std::shared_ptr<Iterator>> iterators TEV_GUARDED_BY(mutex);
    std::uintptr_t lastIterator TEV_GUARDED_BY(mutex) = 0;
};

}  // namespace TevAgent

#endif
