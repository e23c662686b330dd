#ifndef FRAMEWORK_H
#define FRAMEWORK_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "DalMgmtSpiComponent.h"
#include "DalOamSpiModelRepository.h"
#include "DalOamSpiModelRepositoryExtension.h"
#include "DalOamSpiTransaction.h"
#include "DalPortal.h"

namespace TevBench {

/// One model as the repository shows it.
struct BenchModel {
    using Text = std::optional<std::string>;

    std::string name;
    Text version;
    Text release;
    Text correction;
    Text orvaName;
    Text orvaVersion;
    Text orvaRelease;
    Text orvaCorrection;
    std::vector<std::string> features;
    std::string file;
};

/// The framework as both sides of a row see it. It does as little as it can, since its share of the cost is the same
/// for both and would hide the rest. There is one at a time.
class Framework {
public:
    explicit Framework(std::vector<BenchModel> modelList);
    ~Framework();
    Framework(const Framework&) = delete;
    Framework& operator=(const Framework&) = delete;

    /// `count` models: those of the example node, again and again, their names numbered. The first shows no base model
    /// version.
    static std::vector<BenchModel> models(std::size_t count);

    const std::vector<BenchModel>& models() const { return modelsInOrder; }

    DalPortalAccessor& accessor() const;
    DalOamSpiTransaction_2& transactionService() const;
    DalOamSpiModelRepository_4& repository() const;
    DalOamSpiModelRepositoryExtension_1& extension() const;

    /// What has registered itself; null before that.
    DalMgmtSpiComponent_2* component() const { return registered; }

private:
    struct Tables;

    std::vector<BenchModel> modelsInOrder;
    const BenchModel* asked = nullptr;  ///< the model whose general properties were asked for last
    DalMgmtSpiComponent_2* registered = nullptr;
};

}  // namespace TevBench

#endif
