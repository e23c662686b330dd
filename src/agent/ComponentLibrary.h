#ifndef TEV_AGENT_COMPONENT_LIBRARY_H
#define TEV_AGENT_COMPONENT_LIBRARY_H

#include <memory>
#include <string>
#include <vector>

#include "Component.h"
#include "DalPortal.h"
#include "PortalService.h"

namespace TevAgent {

/// A component's shared library, loaded: terminated, when it was initialized, and unloaded with this object. What it
/// leaves registered then is said and unregistered, because its tables go with it. Used by one thread.
class ComponentLibrary {
public:
    /// Loads the library and finds its two entry points; nothing is called yet but its initializers, behind the
    /// barrier. Throws `Failure` (not started) with the path and the loader's reason, or what an initializer threw.
    /// `portalService` is where the library registers its components, and outlives this object.
    ComponentLibrary(const std::string& libraryPath, PortalService& portalService);
    ~ComponentLibrary();
    ComponentLibrary(const ComponentLibrary&) = delete;
    ComponentLibrary& operator=(const ComponentLibrary&) = delete;

    /// The path to load a library by: absolute, because the loader searches elsewhere for a name without a slash; ".."
    /// stays, because it may follow a link. Throws `Failure` (not started) where there is no working folder any more.
    static std::string absolutePath(const std::string& libraryPath);

    /// The absolute path.
    const std::string& path() const { return file; }

    /// Calls `dalLCMinit`, once, behind the barrier; `configuration` may be null. Throws `Failure` (not started) with
    /// what was said while it ran, or the code, when it does not return 0.
    void initialize(const char* configuration);

    /// What was registered while it was initialized.
    const std::vector<std::shared_ptr<Component>>& components() const { return registered; }

private:
    using Init = TevReturnT (*)(DalPortalAccessor*, const char*);
    using Terminate = void (*)();

    template <class Function>
    Function function(const char* symbol) const;

    /// Unloads the library, also when the constructor fails.
    struct Handle {
        Handle(void* library, const std::string& fileName) : value(library), name(fileName) {}
        ~Handle();
        Handle(const Handle&) = delete;
        Handle& operator=(const Handle&) = delete;

        void* const value;
        const std::string& name;  ///< of the file, which the library object keeps longer
    };

    PortalService& portal;
    const std::string file;
    const std::string name;  ///< of the file: the component has no name before it registers
    const Handle handle;
    const Init init;
    const Terminate terminate;
    bool isInitialized = false;
    std::vector<std::shared_ptr<Component>> registered;
};

}  // namespace TevAgent

#endif
