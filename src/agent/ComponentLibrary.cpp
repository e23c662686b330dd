#include "ComponentLibrary.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <type_traits>

#include "Barrier.h"
#include "Diagnostics.h"
#include "Failure.h"
#include "Loader.h"

namespace TevAgent {

namespace {

[[noreturn]] void refuse(const std::string& file, const std::string& reason) {
    throw Failure(ExitStatus::NotStarted, "cannot use component library " + file + ": " + reason);
}

void* open(const std::string& file, const std::string& name) {
    Diagnostics::Capture capture;
    void* library = nullptr;
    Barrier::call(name, "dlopen", [&] {
        library = Loader::load(file);
        return TevReturnOk;
    });
    if (library == nullptr) {
        refuse(file, capture.isEmpty() ? Loader::lastError(file) : capture.takeOr(""));
    }
    return library;
}

}  // namespace

ComponentLibrary::Handle::~Handle() {
    Barrier::call(name, "dlclose", [this] {
        Loader::unload(value);
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

std::string ComponentLibrary::absolutePath(const std::string& libraryPath) {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(libraryPath, error);
    if (error) {
        refuse(libraryPath, error.message());
    }
    return path;
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
    void* const address = Loader::find(handle.value, symbol);
    if (address == nullptr) {
        refuse(file, Loader::lastError(file));
    }
    return reinterpret_cast<Function>(address);
}

}  // namespace TevAgent
