#include "ComponentLibrary.h"

#include <dlfcn.h>

#include <filesystem>
#include <type_traits>

#include "Barrier.h"
#include "Failure.h"

namespace TevAgent {

namespace {

[[noreturn]] void refuse(const std::string& file, const std::string& reason) {
    throw Failure(ExitStatus::NotStarted, "cannot use component library " + file + ": " + reason);
}

/// What the loader says of its last failure; it usually begins with the path, which the sentence has already.
std::string loaderError(const std::string& file) {
    const char* const text = dlerror();
    const std::string reason = text == nullptr ? "no reason given" : text;
    const std::string prefix = file + ": ";
    return reason.compare(0, prefix.size(), prefix) == 0 ? reason.substr(prefix.size()) : reason;
}

void* open(const std::string& file) {
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        refuse(file, loaderError(file));
    }
    return library;
}

}  // namespace

ComponentLibrary::Handle::~Handle() {
    dlclose(value);
}

ComponentLibrary::ComponentLibrary(const std::string& libraryPath)
    // Absolute, because the loader searches elsewhere for a name without a slash.
    : file(std::filesystem::absolute(libraryPath).lexically_normal()),
      name(std::filesystem::path(file).filename()),
      handle(open(file)),
      init(function<Init>("dalLCMinit")),
      terminate(function<Terminate>("dalLCMterminate")) {}

ComponentLibrary::~ComponentLibrary() {
    if (isInitialized) {
        Barrier::call(name, "dalLCMterminate", [this] {
            terminate();
            return TevReturnOk;
        });
    }
}

void ComponentLibrary::initialize(DalPortalAccessor* accessor, const char* configuration) {
    Diagnostics::Capture capture;
    const TevReturnT code = Barrier::call(name, "dalLCMinit", [&] { return init(accessor, configuration); });
    if (code != TevReturnOk) {
        refuse(file, capture.takeOr("dalLCMinit returned " + std::to_string(code)));
    }
    isInitialized = true;
}

template <class Function>
Function ComponentLibrary::function(const char* symbol) const {
    static_assert(std::is_pointer_v<Function> && std::is_function_v<std::remove_pointer_t<Function>>);
    void* const address = dlsym(handle.value, symbol);
    if (address == nullptr) {
        refuse(file, loaderError(file));
    }
    return reinterpret_cast<Function>(address);
}

}  // namespace TevAgent
