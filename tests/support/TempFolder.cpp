#include "TempFolder.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace TevTest {

TempFolder::TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tev-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), pattern);
    }
    folder = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

std::string TempFolder::write(const std::string& name, const std::string& text) const {
    const std::filesystem::path file = folder / name;
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream) {
        throw std::runtime_error("cannot write " + file.string());
    }
    return file.string();
}

}  // namespace TevTest
