#ifndef TEV_AGENT_MODEL_READER_H
#define TEV_AGENT_MODEL_READER_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <variant>

#include "Model.h"
#include "Problem.h"

namespace TevAgent {

/// Reads the heads of model files, in blocks, and of each file no more than the head, the tag that ends it, and the
/// rest of that tag's last block: a model of any size costs the same. Used by one thread at a time.
class ModelReader {
public:
    static constexpr std::size_t blockSize = 4096;  ///< bytes

    /// Reads one file, following links; only regular files are read, nothing is waited for. Gives the model, or why
    /// there is none; see `ModelHead` for what is refused.
    std::variant<Model, Problem> read(const std::filesystem::path& file);

    /// How many bytes were read, all files together.
    std::uint64_t bytesRead() const;

private:
    Model readHead(const std::filesystem::path& file);

    std::uint64_t bytes = 0;
};

}  // namespace TevAgent

#endif
