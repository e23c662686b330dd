// A component that says in the log when it is started.
#include <DalComponent.h>
#include <LoggingWrapper.h>

class Greeter : public Tev::DalComponent<Greeter> {
public:
    Greeter() : DalComponent("Greeter") {}

    TevReturnT initialize(const char*) { return TevReturnOk; }
    TevReturnT start(DalStateChangeReason) {
        Tev::LoggingWrapper::instance().log_printf(__func__, 1, 1, "greetings");
        return TevReturnOk;
    }
    TevReturnT stop(DalStateChangeReason) { return TevReturnOk; }
    void terminate() {}
};

TevReturnT dalLCMinit(DalPortalAccessor* accessor, const char* configuration) {
    return Greeter::instance().registerComponent(accessor, configuration);
}

void dalLCMterminate() {
    Greeter::instance().unregisterComponent();
}
