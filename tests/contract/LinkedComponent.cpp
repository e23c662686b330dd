#include "Component.h"
#include "SchemaPopulatorService.h"

namespace TevTest {

namespace {

class LinkedComponent : public Component {
public:
    TevReturnT init(DalPortalAccessor* accessor, const char* configuration) override {
        return dalLCMinit(accessor, configuration);
    }

    void terminate() override { dalLCMterminate(); }
};

}  // namespace

std::unique_ptr<Component> Component::get() {
    return std::make_unique<LinkedComponent>();
}

}  // namespace TevTest
