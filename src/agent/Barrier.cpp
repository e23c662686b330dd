#include "Barrier.h"

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <typeinfo>

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

TevReturnT Barrier::report(const char* what, const std::string& who, const char* operation) noexcept {
    try {
        const Caught exception = caught();
        Diagnostics::say(what + who + " threw in " + operation + ": " + exception.text);
        return exception.code;
    } catch (const std::exception&) {
        return TevReturnFailure;
    }
}

}  // namespace TevAgent
