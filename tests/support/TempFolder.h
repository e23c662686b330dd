#ifndef TEMP_FOLDER_H
#define TEMP_FOLDER_H

#include <filesystem>
#include <string>

namespace TevTest {

/// A folder of a test's own, removed with everything in it when the object goes.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return folder; }

    /// Writes a file in the folder and returns its path.
    std::string write(const std::string& name, const std::string& text) const;

private:
    std::filesystem::path folder;
};

}  // namespace TevTest

#endif
