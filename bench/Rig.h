#ifndef RIG_H
#define RIG_H

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Floor.h"
#include "Framework.h"
#include "Row.h"
#include "StartedComponent.h"

namespace TevBench {

/// The component and the floor, over the same models.
class Rig {
public:
    static constexpr const char* parentDn = "ManagedElement=1,SystemFunctions=1,SysM=1";
    static constexpr const char* attributes[] = {"schemaId", "identifier",       "baseModelIdentifier",
                                                 "version",  "baseModelVersion", "selectedModelOptions"};

    /// Throws std::logic_error when the two do not give the same values.
    explicit Rig(std::size_t modelCount);
    Rig(const Rig&) = delete;
    Rig& operator=(const Rig&) = delete;

    /// The DN of the model's instance.
    static std::string dnOf(const BenchModel& model);

    /// A read that is part of what is measured. Throws std::runtime_error when it fails: what is not done costs
    /// nothing.
    template <class Side>
    static void read(Side& side, unsigned long txHandle, const std::string& dn, const char* attribute) {
        if (side.getMoAttribute(txHandle, dn.c_str(), attribute) == nullptr) {
            throw std::runtime_error("a read fails");
        }
    }

    /// The sides of a row whose work is the same code for both: a function object `work(side, dns)` that takes a
    /// `StartedComponent&` or a `Floor&` and the DNs of all instances.
    template <class Work>
    static Sides sides(std::size_t modelCount, const Work& work) {
        const auto rig = std::make_shared<Rig>(modelCount);
        return {[=] { return work(rig->component, rig->dns); }, [=] { return work(rig->floor, rig->dns); }};
    }

private:
    void requireSameValues(const std::string& dn);

    Framework framework;
    StartedComponent component;
    Floor floor;
    std::vector<std::string> dns;
};

}  // namespace TevBench

#endif
