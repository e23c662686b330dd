#include "Rdn.h"

#include "Text.h"

namespace TevAgent {

std::optional<std::vector<Rdn>> Rdn::sequence(std::string_view dn) {
    std::vector<Rdn> steps;
    for (const std::string_view step : Text::split(dn, ',')) {
        const std::size_t equals = step.find('=');
        if (equals == std::string_view::npos) {
            return std::nullopt;
        }
        const Rdn rdn{step.substr(0, equals), step.substr(equals + 1)};
        if (!Text::faultOfRdnPart(rdn.className).empty() || !Text::faultOfRdnPart(rdn.key).empty()) {
            return std::nullopt;
        }
        steps.push_back(rdn);
    }
    return steps;
}

}  // namespace TevAgent
