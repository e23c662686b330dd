#ifndef FILE_TEXT_H
#define FILE_TEXT_H

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace TevTest {

/// All bytes of the file at `path`; none when it cannot be read.
inline std::string contents(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

}  // namespace TevTest

#endif
