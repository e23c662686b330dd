#ifndef REQUIRE_H
#define REQUIRE_H

#include <cstdlib>
#include <iostream>

namespace TevFuzz {

/// Ends the process, which is how a target reports a finding, when `holds` is false; `sentence` says what should hold.
inline void require(bool holds, const char* sentence) {
    if (!holds) {
        std::cerr << "Does not hold: " << sentence << std::endl;
        std::abort();
    }
}

/// The same for two values that should be equal; both are shown.
template <class Value, class Expected>
void requireEqual(const Value& value, const Expected& expected, const char* what) {
    if (!(value == expected)) {
        std::cerr << "Wrong: " << what << " is [" << value << "], not [" << expected << ']' << std::endl;
        std::abort();
    }
}

}  // namespace TevFuzz

#endif
