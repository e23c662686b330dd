#include "ModelReader.h"

#include <array>

#include "FileError.h"
#include "ModelHead.h"
#include "RegularFile.h"

namespace TevAgent {

std::variant<Model, Problem> ModelReader::read(const std::filesystem::path& file) {
    try {
        return readHead(file);
    } catch (const FileError& error) {
        return Problem{file.string(), error.line(), error.what()};
    }
}

std::uint64_t ModelReader::bytesRead() const {
    return bytes;
}

Model ModelReader::readHead(const std::filesystem::path& file) {
    RegularFile input(file);
    ModelHead head;
    std::array<char, blockSize> block;
    while (!head.isComplete()) {
        const std::size_t size = input.read(block.data(), block.size());
        bytes += size;
        head.take(std::string_view(block.data(), size), size == 0);
    }
    Model model = head.model();
    model.file = std::filesystem::absolute(file).string();
    return model;
}

}  // namespace TevAgent
