#ifndef OPTION_LIST_H
#define OPTION_LIST_H

#include <string>
#include <vector>

namespace TevTest {

/// A list of options as the repository makes them: a null-terminated array from `new[]` of texts from `strdup`.
const char** makeOptionList(const std::vector<std::string>& options);

/// The blocks that the list is made of, in the order of their release: the texts, then the array.
std::vector<void*> blocksOf(const char** options);

}  // namespace TevTest

#endif
