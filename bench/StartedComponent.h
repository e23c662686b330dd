#ifndef STARTED_COMPONENT_H
#define STARTED_COMPONENT_H

#include <memory>

#include "Component.h"
#include "DalOamSpiManagedObject.h"
#include "DalOamSpiTransactionalResource.h"
#include "Framework.h"

namespace TevBench {

/// The component's library as it is shipped, loaded afresh, and in service while the object lives.
class StartedComponent {
public:
    /// Throws std::runtime_error when it cannot be loaded or does not start.
    explicit StartedComponent(Framework& host);
    ~StartedComponent();
    StartedComponent(const StartedComponent&) = delete;
    StartedComponent& operator=(const StartedComponent&) = delete;

    /// The seconds that its start took.
    double startSeconds() const { return seconds; }

    /// The bytes of the heap that were in use after its start and not before.
    double startBytes() const { return bytes; }

    const DalOamSpiManagedObject_1& objects() const { return *objectTable; }

    // Calls through the component's tables; null where they fail.
    void join(unsigned long txHandle) const { transactionTable->join(txHandle); }
    void finish(unsigned long txHandle) const { transactionTable->finish(txHandle); }

    void* newMoIterator(unsigned long txHandle, const char* parentDn, const char* className) const {
        void* iterator = nullptr;
        objectTable->newMoIterator(txHandle, parentDn, className, &iterator);
        return iterator;
    }

    char* nextMo(void* iterator) const {
        char* key = nullptr;
        objectTable->nextMo(iterator, &key);
        return key;
    }

    DalMoAttributeValueContainer* getMoAttribute(unsigned long txHandle, const char* dn,
                                                 const char* attributeName) const {
        DalMoAttributeValueContainer* value = nullptr;
        objectTable->getMoAttribute(txHandle, dn, attributeName, &value);
        return value;
    }

private:
    const std::unique_ptr<TevTest::Component> library;
    Framework& framework;
    double seconds = 0;
    double bytes = 0;
    const DalOamSpiTransactionalResource_2* transactionTable = nullptr;
    const DalOamSpiManagedObject_1* objectTable = nullptr;
};

}  // namespace TevBench

#endif
