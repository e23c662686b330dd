#ifndef SOURCE_TEXT_H
#define SOURCE_TEXT_H

#include <cstddef>
#include <string>
#include <vector>

namespace TevTest {

/// A string literal of a C++ source, with the literals that directly follow it.
struct SourceText {
    std::string text;                  ///< escapes of marks and newlines are replaced, others stay
    std::size_t line = 0;              ///< counted from 1
    std::vector<std::string> names{};  ///< of the calls that it is an argument of, and of what it is assigned to

    /// The literals of `source` in their order; none of comments and preprocessor lines. In a braced list that holds a
    /// return code, those before the code are passed over: they are what the code and the text behind it are found by.
    static std::vector<SourceText> in(const std::string& source);

    /// Whether one of `others` is among the names.
    bool isIn(const std::vector<std::string>& others) const;
};

}  // namespace TevTest

#endif
