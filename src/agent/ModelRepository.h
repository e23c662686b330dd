#ifndef TEV_AGENT_MODEL_REPOSITORY_H
#define TEV_AGENT_MODEL_REPOSITORY_H

#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "DalMgmtSpiInterface.h"
#include "DalOamSpiModelRepository.h"
#include "DalOamSpiModelRepositoryExtension.h"
#include "Model.h"

namespace TevAgent {

/// The model repository of the node behind its C tables: component "DalOamSpiModelRepositoryService", interface
/// "DalOamSpiModelRepository" version "4" and interface "DalOamSpiModelRepositoryExtension" version "1".
///
/// The operations return -8 for a null argument where a value is needed, -2 for an unknown handle, selector or model,
/// and when no repository exists; a text result is null then, a handle result unchanged. Texts handed out live as
/// long as the repository. The reserved slots of the tables do nothing.
///
/// The tables have no room for an object, so a process has at most one repository at a time. Immutable, so the
/// operations may be called from any thread as long as the repository exists.
class ModelRepository {
public:
    /// Offers `models` in the given order. Of two with the same name and version, `getMomFileName` gives the file of
    /// the first. Throws std::logic_error when the process has a repository already.
    explicit ModelRepository(std::vector<Model> models);
    ~ModelRepository();
    ModelRepository(const ModelRepository&) = delete;
    ModelRepository& operator=(const ModelRepository&) = delete;

    /// The first model of that name, or null.
    const Model* firstNamed(std::string_view name) const;

    /// The leading descriptor of a `DalOamSpiModelRepository_4`. The table lives as long as the process.
    DalMgmtSpiInterface_1* repositoryTable();

    /// The leading descriptor of a `DalOamSpiModelRepositoryExtension_1`. The table lives as long as the process.
    DalMgmtSpiInterface_1* extensionTable();

private:
    struct Tables;

    const Model* find(DalOamSpiMrMomHandle_4T mom) const;
    const Model* findByProperties(DalOamSpiMrGeneralPropertiesHandle_4T properties) const;
    const Model* find(std::string_view name, std::optional<std::string_view> version) const;

    const std::vector<Model> models;
    std::map<std::pair<std::string_view, std::optional<std::string_view>>, const Model*> byIdentity;
};

}  // namespace TevAgent

#endif
