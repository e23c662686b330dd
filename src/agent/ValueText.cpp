#include "ValueText.h"

#include <array>
#include <charconv>
#include <stdexcept>

namespace TevAgent {

namespace {

/// The shortest text that gives the number back.
template <class Number>
std::string decimal(Number number) {
    std::array<char, 32> digits;
    const std::to_chars_result result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    return std::string(digits.data(), result.ptr);
}

std::string textOf(std::int32_t type, const DalMoAttributeValue& value) {
    switch (type) {
        case DalMoTypeInt8:
            return decimal(value.theInt8);
        case DalMoTypeInt16:
            return decimal(value.theInt16);
        case DalMoTypeInt32:
            return decimal(value.theInt32);
        case DalMoTypeInt64:
        case DalMoTypeEnum:
            return decimal(value.theInt64);
        case DalMoTypeUint8:
            return decimal(value.theUint8);
        case DalMoTypeUint16:
            return decimal(value.theUint16);
        case DalMoTypeUint32:
            return decimal(value.theUint32);
        case DalMoTypeUint64:
            return decimal(value.theUint64);
        case DalMoTypeBool:
            // Some other byte in a bool is undefined.
            return value.theUint8 != 0 ? "true" : "false";
        case DalMoTypeDouble:
            return decimal(value.theDouble);
        case DalMoTypeString:
        case DalMoTypeReference:
            if (value.theString == nullptr) {
                throw std::invalid_argument("a value is a null text");
            }
            return value.theString;
        default:
            throw std::invalid_argument("the values are of type " + std::to_string(type) + ", which has no text");
    }
}

}  // namespace

std::vector<std::string> ValueText::of(const DalMoAttributeValueContainer* container) {
    if (container == nullptr) {
        throw std::invalid_argument("there is no value container");
    }
    if (container->nrOfValues != 0 && container->values == nullptr) {
        throw std::invalid_argument("the value container has no cells");
    }
    std::vector<std::string> texts;
    for (std::uint32_t i = 0; i < container->nrOfValues; ++i) {
        texts.push_back(textOf(container->type, container->values[i]));
    }
    return texts;
}

}  // namespace TevAgent
