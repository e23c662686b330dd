#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "Component.h"

namespace TevTest {

namespace {

class LoadedComponent : public Component {
public:
    LoadedComponent() : library(dlopen(TEV_COMPONENT_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
        if (library == nullptr) {
            throw std::runtime_error(dlerror());
        }
    }

    ~LoadedComponent() override { dlclose(library); }

    TevReturnT init(DalPortalAccessor* accessor, const char* configuration) override {
        return function<TevReturnT (*)(DalPortalAccessor*, const char*)>("dalLCMinit")(accessor, configuration);
    }

    void terminate() override { function<void (*)()>("dalLCMterminate")(); }

private:
    template <class Function>
    Function function(const char* name) const {
        void* const symbol = dlsym(library, name);
        if (symbol == nullptr) {
            throw std::runtime_error(std::string("no symbol ") + name);
        }
        return reinterpret_cast<Function>(symbol);
    }

    void* const library;
};

}  // namespace

std::unique_ptr<Component> Component::get() {
    return std::make_unique<LoadedComponent>();
}

}  // namespace TevTest
