#ifndef TEV_AGENT_ONLY_ONE_H
#define TEV_AGENT_ONLY_ONE_H

#include <stdexcept>

#include "Barrier.h"
#include "TevReturnT.h"

namespace TevAgent {

/// A base of the classes that stand behind a table. Table functions have no room for an object, so there is one `T` at
/// a time in the process, and they find it here. It is made and destroyed while no component is loaded.
///
/// `T` has a `static constexpr const char* componentName`: the service's name among components.
template <class T>
class OnlyOne {
public:
    OnlyOne(const OnlyOne&) = delete;
    OnlyOne& operator=(const OnlyOne&) = delete;

protected:
    OnlyOne() {
        if (object != nullptr) {
            throw std::logic_error(std::string("there is a ") + T::componentName + " already");
        }
        object = this;
    }

    ~OnlyOne() { object = nullptr; }

    /// `TableEntry<&T::operation>::call` is the table function that carries `operation` out on the one object.
    template <auto operation>
    struct TableEntry;

    template <class... Arguments, TevReturnT (T::*operation)(Arguments...)>
    struct TableEntry<operation> {
        static TevReturnT call(Arguments... arguments) {
            return Barrier::serve(T::componentName,
                                  [&] { return (static_cast<T&>(*object).*operation)(arguments...); });
        }
    };

private:
    inline static OnlyOne* object = nullptr;
};

}  // namespace TevAgent

#endif
