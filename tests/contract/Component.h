#ifndef COMPONENT_H
#define COMPONENT_H

#include <memory>

#include "DalPortal.h"
#include "TevReturnT.h"

namespace TevTest {

/// The component's library as a host has it before anything is registered: its two exported functions.
class Component {
public:
    virtual ~Component() = default;

    virtual TevReturnT init(DalPortalAccessor* accessor, const char* configuration) = 0;
    virtual void terminate() = 0;

    /// Gets hold of the component: the one that is linked in, or the library, loaded. Each test program of the suite
    /// has its own.
    static std::unique_ptr<Component> get();
};

}  // namespace TevTest

#endif
