#ifndef TEV_AGENT_BARRIER_H
#define TEV_AGENT_BARRIER_H

#include <string>

#include "Diagnostics.h"
#include "ReturnCode.h"
#include "TevReturnT.h"

namespace TevAgent {

/// The border between the agent and its components: every call across it runs in one of these. No exception passes.
///
/// One that is caught is reported as "component <who> threw in <operation>: <text>"; its code is that of a
/// `Tev::TevException`, else, or when that is 0, -1. Thread-safe.
class Barrier {
public:
    /// Carries out `function`, a call into the component `component`, and returns its code.
    template <class Function>
    static TevReturnT call(const std::string& component, const char* operation, Function&& function) noexcept {
        try {
            return function();
        } catch (...) {
            return report("component ", component, operation);
        }
    }

    /// As `call`, for an operation that has no reason to fail: a code other than 0 is reported too.
    template <class Function>
    static TevReturnT demand(const std::string& component, const char* operation, Function&& function) noexcept {
        return call(component, operation, [&] {
            const TevReturnT code = function();
            if (code != TevReturnOk) {
                Diagnostics::say("component " + component + " returned " + ReturnCode::text(code) + " from " +
                                 operation);
            }
            return code;
        });
    }

    /// Carries out `function`, a call that a component made of the agent's service `service`, and returns its code.
    template <class Function>
    static TevReturnT serve(const char* service, Function&& function) noexcept {
        try {
            return function();
        } catch (...) {
            return report("", "the agent", service);
        }
    }

private:
    /// Reports the exception that is being handled; returns its code.
    static TevReturnT report(const char* what, const std::string& who, const char* operation) noexcept;
};

}  // namespace TevAgent

#endif
