#include "Rig.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace TevBench {

namespace {

bool isSame(const DalMoAttributeValueContainer* left, const DalMoAttributeValueContainer* right) {
    if (left == nullptr || right == nullptr || left->type != right->type || left->nrOfValues != right->nrOfValues) {
        return false;
    }
    for (std::uint32_t i = 0; i < left->nrOfValues; ++i) {
        if (std::strcmp(left->values[i].theString, right->values[i].theString) != 0) {
            return false;
        }
    }
    return true;
}

}  // namespace

Rig::Rig(std::size_t modelCount) : framework(Framework::models(modelCount)), component(framework), floor(framework) {
    for (const BenchModel& model : framework.models()) {
        dns.push_back(dnOf(model));
    }
    // Some 1,000 of them, where there are more, and the last one always.
    for (std::size_t i = 0; i < modelCount; i += std::max<std::size_t>(1, modelCount / 1000)) {
        requireSameValues(dns[i]);
    }
    requireSameValues(dns.back());
}

std::string Rig::dnOf(const BenchModel& model) {
    return std::string(parentDn) + ",Schema=" + model.name;
}

void Rig::requireSameValues(const std::string& dn) {
    constexpr unsigned long txHandle = 1;
    for (const char* const attribute : attributes) {
        if (!isSame(component.getMoAttribute(txHandle, dn.c_str(), attribute),
                    floor.getMoAttribute(txHandle, dn.c_str(), attribute))) {
            throw std::logic_error("component and floor give different values");
        }
    }
    component.finish(txHandle);
    floor.finish(txHandle);
}

}  // namespace TevBench
