#ifndef TEV_AGENT_CHECK_HOST_H
#define TEV_AGENT_CHECK_HOST_H

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "Barrier.h"
#include "CheckEnd.h"
#include "CheckSubject.h"
#include "ComponentLibrary.h"
#include "DalOamSpiManagedObject.h"
#include "Diagnostics.h"
#include "ModelRepository.h"
#include "ObjectStore.h"
#include "PortalService.h"
#include "RecordingPortal.h"
#include "Router.h"
#include "TransactionService.h"

namespace TevAgent {

/// The host of one component that is checked: services that are all in memory, and every step of the component's life
/// by itself. What goes wrong in a step ends the item as failed (`CheckEnd`).
///
/// At its end the component is stopped, terminated and unloaded, as far as it got. There is one host at a time. Used by
/// one thread, but for `call` and the services.
class CheckHost {
public:
    /// Loads and initializes the other libraries. Throws `Failure` (not started) when one of them, or the file of
    /// managed objects, cannot be used, or the working folder that a relative path begins at is gone.
    explicit CheckHost(const CheckSubject& checkSubject);
    ~CheckHost();
    CheckHost(const CheckHost&) = delete;
    CheckHost& operator=(const CheckHost&) = delete;

    // The steps, in order. Each takes the ones before it that are still to be done.
    void load();
    void findEntryPoints();
    void initialize();
    void start();
    void stop();
    void terminate();
    void unload();

    /// Calls `dalLCMinit` with `accessor`, which may give no portal, and returns its code.
    TevReturnT initializeWith(DalPortalAccessor* accessor);

    /// Carries out `function`, a call into the component, behind the barrier.
    template <class Function>
    TevReturnT call(const char* operation, Function&& function) {
        bool hasReturned = false;
        const TevReturnT code = Barrier::call(name, operation, [&] {
            const TevReturnT returned = function();
            hasReturned = true;
            return returned;
        });
        if (!hasReturned) {
            thrower = operation;
        }
        return code;
    }

    /// As `call`, for one that has to return 0.
    template <class Function>
    void demand(const char* operation, Function&& function) {
        Diagnostics::Capture capture;
        const TevReturnT code = call(operation, function);
        if (code != TevReturnOk) {
            CheckEnd::fail(capture.takeOr(operation + (" returned " + ReturnCode::text(code))));
        }
    }

    /// The operation of the last call that ended with an exception; null when none did.
    const char* lastThrower() const { return thrower; }

    /// The table of the first component that the library registered; `initialize` was called.
    DalMgmtSpiComponent_2& component() const { return *recorder.registered().front(); }

    /// Its tables for transactions and managed objects. Items are skipped when it offers none.
    DalOamSpiTransactionalResource_2& resource() const;
    DalOamSpiManagedObject_1& objects() const;

    /// The class that is checked, and the DN that its instances stand under. Items are skipped when nobody tells them.
    std::string className() const;
    std::string parent() const;

    /// The DN of the instance with that key.
    std::string dnOf(const std::string& key) const;

    /// The attributes that are read. Items are skipped when nobody tells them.
    std::vector<std::string> attributes() const;

    const std::string& file() const { return path; }
    RecordingPortal& portalRecorder() { return recorder; }
    PortalService& portalService() { return portal; }
    TransactionService& transactions() { return transactionService; }

private:
    using Init = TevReturnT (*)(DalPortalAccessor*, const char*);
    using Terminate = void (*)();

    template <class Table>
    Table& offered(const char* interfaceName) const;

    /// Of the components that the library registered the one that is checked: whose class is routed to, else the first
    /// that offers managed objects, else the first.
    const DalMgmtSpiComponent_2& owner() const;
    const Route* routeTo(const DalMgmtSpiComponent_2& table) const;
    void endLife();

    const CheckSubject& subject;
    const std::string path;  ///< absolute
    const std::string name;  ///< of the file
    const std::unique_ptr<ModelRepository> repository;
    ObjectStore store;
    PortalService portal;
    RecordingPortal recorder;
    TransactionService transactionService;
    std::vector<Route> routes;
    std::unique_ptr<Router> router;
    std::vector<std::unique_ptr<ComponentLibrary>> others;

    void* handle = nullptr;  ///< of the loaded library
    Init init = nullptr;
    Terminate terminator = nullptr;
    bool isInitialized = false;
    bool isStarted = false;
    std::atomic<const char*> thrower{nullptr};
};

}  // namespace TevAgent

#endif
