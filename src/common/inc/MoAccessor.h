#ifndef TEV_MO_ACCESSOR_H
#define TEV_MO_ACCESSOR_H

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "DalOamSpiManagedObject.h"
#include "TevCommonApi.h"
#include "TevException.h"
#include "Transaction.h"

namespace Tev {

/// Reads managed objects of the whole node, by way of the router that `Tev::Portal` finds.
///
/// A value type is a whole number of 8, 16, 32 or 64 bits, signed or not, `bool`, `double` or `std::string`. What the
/// router refuses ends in a `TevException` with its code and the text "<operation> failed for <object>: <code>"; so
/// does a missing router.
class TEV_COMMON_API MoAccessor : public Transaction {
public:
    using Transaction::Transaction;

    /// Sets `dn` to the first instance of `classPath`, class names from the root joined with commas: depth first, an
    /// instance without the next class being passed over. Leaves `dn` empty when there is none. Throws `TevException`.
    void getFirstMoInstance(const std::string& classPath, std::string& dn) const;

    /// The attribute's only value. Throws `TevException`: the router's code; -1 when the attribute has no value, more
    /// than one, or values of another type.
    template <class T>
    T getAttr(const std::string& dn, const std::string& attrName) const {
        return extractAttr<T>(getSingleValue(getSpiType<T>(), dn, attrName));
    }

    /// All values of the attribute, in its order. Throws `TevException`: the router's code; -1 for values of another
    /// type.
    template <class T>
    std::vector<T> getSeqAttr(const std::string& dn, const std::string& attrName) const {
        std::vector<T> values;
        const DalMoAttributeValueContainer* const container = getAttrContainer(dn, attrName);
        if (hasValues(container)) {
            validateType(getSpiType<T>(), container->type, dn, attrName);
            for (std::uint32_t i = 0; i < container->nrOfValues; ++i) {
                values.push_back(extractAttr<T>(container->values[i]));
            }
        }
        return values;
    }

    /// The attribute as the router gives it: owned by the router, valid until the transaction's `finish`; may be null.
    /// Throws `TevException` with the router's code.
    const DalMoAttributeValueContainer* getAttrContainer(const std::string& dn, const std::string& attrName) const;

    /// The type code of the values that `T` is read from.
    template <class T>
    static std::int32_t getSpiType();

    /// Throws `TevException` (code -1) unless values of the type code `actual` may be read as ones of `expected`: the
    /// same, a reference as a string, or an enumeration as a signed number of 64 bits.
    static void validateType(std::int32_t expected, std::int32_t actual, const std::string& dn,
                             const std::string& attrName);

    /// The value in a cell that holds one of the type `getSpiType<T>()`. Throws `TevException` (code -1) for a null
    /// string.
    template <class T>
    static T extractAttr(const DalMoAttributeValue& value);

private:
    const DalMoAttributeValue& getSingleValue(std::int32_t type, const std::string& dn,
                                              const std::string& attrName) const;
    static bool hasValues(const DalMoAttributeValueContainer* container);
};

template <class T>
std::int32_t MoAccessor::getSpiType() {
    if constexpr (std::is_same_v<T, std::string>) {
        return DalMoTypeString;
    } else if constexpr (std::is_same_v<T, bool>) {
        return DalMoTypeBool;
    } else if constexpr (std::is_same_v<T, double>) {
        return DalMoTypeDouble;
    } else {
        static_assert(std::is_integral_v<T>, "no attribute has values of this type");
        // From one code to the next the width doubles.
        constexpr std::int32_t width = sizeof(T) == 8 ? 3 : sizeof(T) / 2;
        return (std::is_signed_v<T> ? DalMoTypeInt8 : DalMoTypeUint8) + width;
    }
}

template <class T>
T MoAccessor::extractAttr(const DalMoAttributeValue& value) {
    if constexpr (std::is_same_v<T, std::string>) {
        if (value.theString == nullptr) {
            throw TevException("A string value is null");
        }
        return value.theString;
    } else {
        // Whatever its type, a value lies at the cell's first byte.
        T number;
        std::memcpy(&number, &value, sizeof number);
        return number;
    }
}

}  // namespace Tev

#endif
