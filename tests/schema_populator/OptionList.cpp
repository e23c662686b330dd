#include "OptionList.h"

#include <algorithm>
#include <cstring>

namespace TevTest {

const char** makeOptionList(const std::vector<std::string>& options) {
    auto* const list = new const char*[options.size() + 1];
    std::transform(options.begin(), options.end(), list,
                   [](const std::string& option) { return strdup(option.c_str()); });
    list[options.size()] = nullptr;
    return list;
}

std::vector<void*> blocksOf(const char** options) {
    std::vector<void*> blocks;
    for (const char** entry = options; *entry != nullptr; ++entry) {
        blocks.push_back(const_cast<char*>(*entry));
    }
    blocks.push_back(options);
    return blocks;
}

}  // namespace TevTest
