#ifndef PAGES_H
#define PAGES_H

#include <filesystem>
#include <vector>

namespace TevTest {

/// The pages of the documentation: in the root of the tree, and in `docs`.
inline std::vector<std::filesystem::path> pages() {
    std::vector<std::filesystem::path> found;
    for (const char* const folder : {TEV_SOURCES, TEV_SOURCES "/docs"}) {
        for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() == ".md") {
                found.push_back(entry.path());
            }
        }
    }
    return found;
}

}  // namespace TevTest

#endif
