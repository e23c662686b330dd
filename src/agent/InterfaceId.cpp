#include "InterfaceId.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace TevAgent {

namespace {

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string_view withoutLeadingZeros(std::string_view number) {
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

bool isAtLeast(std::string_view version, std::string_view wanted) {
    if (!isNumber(version) || !isNumber(wanted)) {
        return version == wanted;
    }
    const std::string_view left = withoutLeadingZeros(version);
    const std::string_view right = withoutLeadingZeros(wanted);
    return left.size() != right.size() ? left.size() > right.size() : left >= right;
}

}  // namespace

InterfaceId::InterfaceId(std::string componentName, std::string interfaceName, std::string interfaceVersion)
    : component(std::move(componentName)), name(std::move(interfaceName)), version(std::move(interfaceVersion)) {}

InterfaceId::InterfaceId(const DalMgmtSpiInterface_1& descriptor)
    : InterfaceId(descriptor.componentName, descriptor.interfaceName, descriptor.interfaceVersion) {}

std::string InterfaceId::text() const {
    return component + "/" + name + " version " + version;
}

bool InterfaceId::meets(const InterfaceId& wanted) const {
    return component == wanted.component && name == wanted.name && isAtLeast(version, wanted.version);
}

}  // namespace TevAgent
