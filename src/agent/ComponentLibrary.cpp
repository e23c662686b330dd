#include "ComponentLibrary.h"

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
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

/// Absolute, because the loader searches elsewhere for a name without a slash; ".." stays, because it may follow a
/// link.
std::string absolutePath(const std::string& file) {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(file, error);
    if (error) {
        refuse(file, error.message());
    }
    return path;
}

// The loader's functions are declared to throw nothing, but what a library runs while it is loaded or unloaded may
// throw all the same. Through a pointer that can change, the compiler cannot know whom it calls and keeps the barrier.
void* (*volatile loadLibrary)(const char*, int) = dlopen;
int (*volatile unloadLibrary)(void*) = dlclose;

void* open(const std::string& file, const std::string& name) {
    Diagnostics::Capture capture;
    void* library = nullptr;
    Barrier::call(name, "dlopen", [&] {
        library = loadLibrary(file.c_str(), RTLD_NOW | RTLD_LOCAL);
        return TevReturnOk;
    });
    if (library == nullptr) {
        refuse(file, capture.isEmpty() ? loaderError(file) : capture.takeOr(""));
    }
    return library;
}

}  // namespace

ComponentLibrary::Handle::~Handle() {
    Barrier::call(name, "dlclose", [this] {
        unloadLibrary(value);
        return TevReturnOk;
    });
}

ComponentLibrary::ComponentLibrary(const std::string& libraryPath, PortalService& portalService)
    : portal(portalService),
      file(absolutePath(libraryPath)),
      name(std::filesystem::path(file).filename()),
      handle(open(file, name), name),
      init(function<Init>("dalLCMinit")),
      terminate(function<Terminate>("dalLCMterminate")) {}

ComponentLibrary::~ComponentLibrary() {
    if (isInitialized) {
        Barrier::call(name, "dalLCMterminate", [this] {
            terminate();
            return TevReturnOk;
        });
    }
    for (const std::shared_ptr<Component>& component : registered) {
        if (portal.unregisterComponent(&component->table()) == TevReturnOk) {
            Diagnostics::say("component library " + file + " left component " + component->name() + " registered");
        }
    }
}

void ComponentLibrary::initialize(const char* configuration) {
    const auto before = portal.registered();
    Diagnostics::Capture capture;
    const TevReturnT code =
        Barrier::call(name, "dalLCMinit", [&] { return init(PortalService::accessor(), configuration); });
    for (const std::shared_ptr<Component>& component : portal.registered()) {
        if (std::find(before.begin(), before.end(), component) == before.end()) {
            registered.push_back(component);
        }
    }
    if (code != TevReturnOk) {
        refuse(file, capture.takeOr("dalLCMinit returned " + ReturnCode::text(code)));
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
