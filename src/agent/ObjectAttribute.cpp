#include "ObjectAttribute.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include "Rdn.h"
#include "Text.h"

namespace TevAgent {

namespace {

struct TypeName {
    std::string_view name;
    std::int32_t type;
};

constexpr std::array<TypeName, 13> typeNames = {{{"int8", DalMoTypeInt8},
                                                 {"int16", DalMoTypeInt16},
                                                 {"int32", DalMoTypeInt32},
                                                 {"int64", DalMoTypeInt64},
                                                 {"uint8", DalMoTypeUint8},
                                                 {"uint16", DalMoTypeUint16},
                                                 {"uint32", DalMoTypeUint32},
                                                 {"uint64", DalMoTypeUint64},
                                                 {"string", DalMoTypeString},
                                                 {"bool", DalMoTypeBool},
                                                 {"reference", DalMoTypeReference},
                                                 {"enum", DalMoTypeEnum},
                                                 {"double", DalMoTypeDouble}}};

std::string_view nameOf(std::int32_t type) {
    for (const TypeName& entry : typeNames) {
        if (entry.type == type) {
            return entry.name;
        }
    }
    return "unknown type";
}

[[noreturn]] void refuse(const std::string& text, const std::string& why, std::int32_t type) {
    throw std::invalid_argument(Text::quoted(text) + " is " + why + " " + std::string(nameOf(type)));
}

/// Reads the number that is all of `text`, but for white space around it.
template <class Number>
Number numberIn(const std::string& text, std::int32_t type) {
    const std::string_view digits = Text::trimmed(text);
    const char* end = digits.data() + digits.size();
    Number number{};
    const auto [rest, error] = std::from_chars(digits.data(), end, number);
    if (rest != end || error == std::errc::invalid_argument) {
        refuse(text, "no value of type", type);
    }
    if (error == std::errc::result_out_of_range) {
        refuse(text, "out of the range of type", type);
    }
    return number;
}

double finiteIn(const std::string& text) {
    const double number = numberIn<double>(text, DalMoTypeDouble);
    if (!std::isfinite(number)) {
        refuse(text, "not a finite value of type", DalMoTypeDouble);
    }
    return number;
}

bool boolIn(const std::string& text) {
    const std::string_view word = Text::trimmed(text);
    if (word != "true" && word != "false") {
        refuse(text, "neither \"true\" nor \"false\", the values of type", DalMoTypeBool);
    }
    return word == "true";
}

std::unique_ptr<char[]> copyOf(const std::string& text) {
    auto copy = std::make_unique<char[]>(text.size() + 1);
    std::memcpy(copy.get(), text.c_str(), text.size() + 1);
    return copy;
}

}  // namespace

std::int32_t ObjectAttribute::typeNamed(std::string_view name) {
    for (const TypeName& entry : typeNames) {
        if (entry.name == name) {
            return entry.type;
        }
    }
    return 0;
}

void ObjectAttribute::append(const std::string& text) {
    DalMoAttributeValue value;
    std::memset(&value, 0, sizeof value);
    switch (type) {
        case DalMoTypeInt8:
            value.theInt8 = numberIn<std::int8_t>(text, type);
            break;
        case DalMoTypeInt16:
            value.theInt16 = numberIn<std::int16_t>(text, type);
            break;
        case DalMoTypeInt32:
            value.theInt32 = numberIn<std::int32_t>(text, type);
            break;
        case DalMoTypeInt64:
        case DalMoTypeEnum:
            value.theInt64 = numberIn<std::int64_t>(text, type);
            break;
        case DalMoTypeUint8:
            value.theUint8 = numberIn<std::uint8_t>(text, type);
            break;
        case DalMoTypeUint16:
            value.theUint16 = numberIn<std::uint16_t>(text, type);
            break;
        case DalMoTypeUint32:
            value.theUint32 = numberIn<std::uint32_t>(text, type);
            break;
        case DalMoTypeUint64:
            value.theUint64 = numberIn<std::uint64_t>(text, type);
            break;
        case DalMoTypeBool:
            value.theBool = boolIn(text);
            break;
        case DalMoTypeDouble:
            value.theDouble = finiteIn(text);
            break;
        case DalMoTypeReference:
            if (!Rdn::sequence(text)) {
                refuse(text, "not a DN, and so no value of type", type);
            }
            [[fallthrough]];
        case DalMoTypeString:
            texts.push_back(copyOf(text));
            value.theString = texts.back().get();
            break;
        default:
            throw std::invalid_argument("values of this type cannot be told in text");
    }
    values.push_back(value);
}

}  // namespace TevAgent
