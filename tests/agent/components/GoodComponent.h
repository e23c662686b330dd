#ifndef GOOD_COMPONENT_H
#define GOOD_COMPONENT_H

#include <cstring>

#include "DalMgmtSpiComponent.h"
#include "DalOamSpiManagedObject.h"
#include "DalOamSpiTransaction.h"
#include "DalPortal.h"

/// A component that does everything right: it stands in for the owner of the class Schema and has two instances, "one"
/// and "two", whose attributes all have the value "value". Each source file of this folder changes one thing in it.
class GoodComponent {
public:
    explicit GoodComponent(const char* name = "TevSchemaMoService") {
        component = {{name, "DalMgmtSpiComponent", "2"},
                     offers,
                     dependencies,
                     [](DalStateChangeReason) { return TevReturnT{TevReturnOk}; },
                     [](DalStateChangeReason) { return TevReturnT{TevReturnOk}; },
                     extras,
                     false};
        resource = {{name, "DalOamSpiTransactionalResource", "2"}, join, done, done, done, done, validate};
        objects = {
            {name, "DalOamSpiManagedObject", "1"},
            [](unsigned long, const char*, const char*, DalMoAttributeValueContainer*) { return refused; },
            getMoAttribute,
            newMoIterator,
            nextMo,
            [](unsigned long, const char*, const char*, const char*, DalMoAttributeValueContainer*) { return refused; },
            [](unsigned long, const char*) { return refused; },
            [](unsigned long, const char*, const char*, DalMoAttributeValueContainer**,
               DalMoAttributeValueContainer**) { return refused; }};
    }

    TevReturnT registerWith(DalPortalAccessor* accessor) {
        current = this;
        portal = static_cast<DalPortal_3*>(accessor->getPortal("3"));
        return portal->registerComponent(&component);
    }

    void unregister() { portal->unregisterComponent(&component); }

    template <class Table>
    Table* find(const char* componentName, const char* interfaceName, const char* version) const {
        void* found = nullptr;
        portal->getInterface(componentName, interfaceName, version, &found);
        return static_cast<Table*>(found);
    }

    static constexpr TevReturnT refused = TevReturnFailure;
    inline static GoodComponent* current = nullptr;

    DalMgmtSpiComponent_2 component{};
    DalOamSpiTransactionalResource_2 resource{};
    DalOamSpiManagedObject_1 objects{};
    DalMgmtSpiInterface_1* offers[4] = {&resource.base, &objects.base, nullptr, nullptr};
    DalMgmtSpiInterface_1* dependencies[2] = {nullptr, nullptr};
    DalMgmtSpiInterface_1* extras[1] = {nullptr};

private:
    static TevReturnT join(unsigned long txHandle) {
        return current->find<DalOamSpiTransaction_2>("DalOamSpiTransactionService", "DalOamSpiTransaction", "2")
            ->registerParticipant(txHandle, &current->resource);
    }

    static TevReturnT done(unsigned long) { return TevReturnOk; }

    static TevReturnT validate(unsigned long, bool* result) {
        *result = true;
        return TevReturnOk;
    }

    static TevReturnT getMoAttribute(unsigned long, const char*, const char*, DalMoAttributeValueContainer** result) {
        static char text[] = "value";
        static DalMoAttributeValue value = {text};
        static DalMoAttributeValueContainer container = {DalMoTypeString, 1, &value};
        *result = &container;
        return TevReturnOk;
    }

    static TevReturnT newMoIterator(unsigned long, const char*, const char*, void** iterator) {
        current->next = 0;
        *iterator = current;
        return TevReturnOk;
    }

    static TevReturnT nextMo(void*, char** result) {
        static char one[] = "one";
        static char two[] = "two";
        static char* const keys[] = {one, two, nullptr};
        *result = keys[current->next];
        current->next += *result == nullptr ? 0 : 1;
        return TevReturnOk;
    }

    DalPortal_3* portal = nullptr;
    int next = 0;
};

#endif
