#include "Barrier.h"

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <typeinfo>
#include <utility>

#include "TevException.h"

namespace TevAgent {

namespace {

/// What can be told of an exception that is no std::exception.
std::string currentType() {
    const std::type_info* const type = abi::__cxa_current_exception_type();
    if (type == nullptr) {
        return "an exception of unknown type";
    }
    const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(type->name(), nullptr, nullptr, nullptr),
                                                           std::free);
    return std::string("an exception of type ") + (name != nullptr ? name.get() : type->name());
}

/// The innermost call that the thread is in.
thread_local const Barrier::Call* innermost = nullptr;

struct Caught {
    TevReturnT code;
    std::string text;
};

/// Takes the exception that is being handled apart.
Caught caught() {
    try {
        throw;
    } catch (const Tev::TevException& e) {
        return {e.getReturnCode(), e.what()};
    } catch (const std::exception& e) {
        return {TevReturnFailure, e.what()};
    } catch (...) {
        return {TevReturnFailure, currentType()};
    }
}

}  // namespace

Barrier::Call::Call(const std::string& componentName, const char* operationName) noexcept
    : component(componentName), operation(operationName), outer(std::exchange(innermost, this)) {}

Barrier::Call::~Call() {
    innermost = outer;
}

std::string Barrier::blame(const std::string& deed) {
    return innermost == nullptr ? "a component " + deed + " in a thread of its own"
                                : "component " + innermost->component + " " + deed + " in " + innermost->operation;
}

TevReturnT Barrier::report(const char* what, const std::string& who, const char* operation) noexcept {
    try {
        const Caught exception = caught();
        Diagnostics::say(what + who + " threw in " + operation + ": " + exception.text);
        return exception.code == TevReturnOk ? TevReturnFailure : exception.code;  // it threw: it did not succeed
    } catch (const std::exception&) {
        return TevReturnFailure;
    }
}

}  // namespace TevAgent
