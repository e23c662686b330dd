#ifndef TEV_AGENT_MODEL_FOLDER_H
#define TEV_AGENT_MODEL_FOLDER_H

#include <cstdint>
#include <filesystem>
#include <vector>

#include "Model.h"
#include "Problem.h"

namespace TevAgent {

/// The models of a folder, one file each, as they were when the folder was read.
///
/// Considered is every entry directly in the folder whose name ends in ".xml"; one that is not a readable model file
/// is a problem. A sub-folder of any name is a problem too, because its models are not read. Passed over are other
/// files, and all entries whose name begins with ".".
///
/// Immutable, so several threads may use one object.
class ModelFolder {
public:
    /// Reads `folder`; nothing depends on the order in which the file system lists it. Throws `Tev::TevException`
    /// (code -1), whose text names the folder and the reason, when it cannot be listed.
    static ModelFolder read(const std::filesystem::path& folder);

    /// In the order of their names, then versions (none comes first), both bytewise. No two have the same name and
    /// version: the file that is first in path order is kept.
    const std::vector<Model>& models() const&;
    std::vector<Model> models() &&;

    /// Why which files were left out, in the order of their paths.
    const std::vector<Problem>& problems() const;

    /// How many bytes of the files were read.
    std::uint64_t bytesRead() const;

private:
    ModelFolder() = default;

    std::vector<Model> modelList;
    std::vector<Problem> problemList;
    std::uint64_t bytes = 0;
};

}  // namespace TevAgent

#endif
