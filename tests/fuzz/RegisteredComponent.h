#ifndef REGISTERED_COMPONENT_H
#define REGISTERED_COMPONENT_H

#include "DalOamSpiManagedObject.h"
#include "DalOamSpiTransactionalResource.h"
#include "FakeHost.h"
#include "Portal.h"
#include "Require.h"
#include "SchemaPopulatorService.h"

namespace TevFuzz {

/// A host of fakes with the component registered in it, not yet started. At the end the component is stopped and taken
/// off the portal.
class RegisteredComponent {
public:
    RegisteredComponent() {
        Tev::Portal::setAccessor(host.accessor());
        requireEqual(dalLCMinit(host.accessor(), nullptr), TevReturnOk, "the code of dalLCMinit");
    }
    ~RegisteredComponent() {
        stop();
        dalLCMterminate();
        Tev::Portal::setAccessor(nullptr);
    }
    RegisteredComponent(const RegisteredComponent&) = delete;
    RegisteredComponent& operator=(const RegisteredComponent&) = delete;

    TevReturnT start() { return host.component()->start(DalStateChangeReasonUnspecified); }
    TevReturnT stop() { return host.component()->stop(DalStateChangeReasonUnspecified); }

    DalOamSpiTransactionalResource_2& resource() const {
        return *host.offered<DalOamSpiTransactionalResource_2>("DalOamSpiTransactionalResource");
    }
    DalOamSpiManagedObject_1& objects() const {
        return *host.offered<DalOamSpiManagedObject_1>("DalOamSpiManagedObject");
    }

    TevTest::FakeHost host;
};

}  // namespace TevFuzz

#endif
