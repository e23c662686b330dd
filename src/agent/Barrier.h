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
    /// A call into a component while it is under way.
    class Call {
    public:
        /// Both are borrowed.
        Call(const std::string& componentName, const char* operationName) noexcept;
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

        const std::string& component;
        const char* const operation;

    private:
        const Call* const outer;
    };

    /// Carries out `function`, a call into the component `component`, and returns its code.
    template <class Function>
    static TevReturnT call(const std::string& component, const char* operation, Function&& function) noexcept {
        const Call underWay(component, operation);
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

    /// Whose deed it is when a component does something at this moment, in this thread: "component <who> <deed> in
    /// <operation>" during a call into one, else "a component <deed> in a thread of its own".
    static std::string blame(const std::string& deed);

private:
    /// Reports the exception that is being handled; returns its code.
    static TevReturnT report(const char* what, const std::string& who, const char* operation) noexcept;
};

}  // namespace TevAgent

#endif
