#include "ModelFolder.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

#include "ModelReader.h"
#include "TevException.h"
#include "Text.h"

namespace TevAgent {

namespace {

constexpr std::string_view modelSuffix = ".xml";

bool endsWith(const std::string& text, std::string_view suffix) {
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

bool isConsidered(const std::filesystem::directory_entry& entry) {
    const std::string name = entry.path().filename().string();
    std::error_code ignored;
    return name.front() != '.' && (endsWith(name, modelSuffix) || entry.is_directory(ignored));
}

/// The entries to look at, in path order.
std::vector<std::string> consideredEntries(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::directory_iterator entry(std::filesystem::absolute(folder, error), error);
    std::vector<std::string> paths;
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (isConsidered(*entry)) {
            paths.push_back(entry->path().string());
        }
    }
    if (error) {
        throw Tev::TevException("%s: the folder of models cannot be read: %s; --node or --models names another",
                                Text::escaped(folder.string()).c_str(), error.message().c_str());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

/// By name and version; their order is that of the models.
using KeptModels = std::map<std::pair<std::string, std::optional<std::string>>, Model>;

/// Keeps `model`, or adds a problem when there is one of that name and version already.
void keep(Model model, KeptModels& kept, std::vector<Problem>& problems) {
    const KeptModels::key_type identity(model.name, model.version);
    const auto first = kept.find(identity);
    if (first == kept.end()) {
        kept.emplace(identity, std::move(model));
        return;
    }
    const std::string version = model.version ? " and version " + Text::quoted(*model.version) : ", without a version";
    problems.push_back({model.file, 0,
                        "left out, because " + first->second.file + " holds the same model: name " +
                            Text::quoted(model.name) + version});
}

}  // namespace

ModelFolder ModelFolder::read(const std::filesystem::path& folder) {
    ModelFolder result;
    ModelReader reader;
    KeptModels kept;
    for (const std::string& file : consideredEntries(folder)) {
        std::variant<Model, Problem> outcome = reader.read(file);
        if (auto* model = std::get_if<Model>(&outcome)) {
            keep(std::move(*model), kept, result.problemList);
        } else {
            result.problemList.push_back(std::get<Problem>(std::move(outcome)));
        }
    }
    for (auto& [identity, model] : kept) {
        result.modelList.push_back(std::move(model));
    }
    result.bytes = reader.bytesRead();
    return result;
}

const std::vector<Model>& ModelFolder::models() const& {
    return modelList;
}

std::vector<Model> ModelFolder::models() && {
    return std::move(modelList);
}

const std::vector<Problem>& ModelFolder::problems() const {
    return problemList;
}

std::uint64_t ModelFolder::bytesRead() const {
    return bytes;
}

}  // namespace TevAgent
