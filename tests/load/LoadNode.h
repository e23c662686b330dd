#ifndef TEV_AGENT_LOAD_NODE_H
#define TEV_AGENT_LOAD_NODE_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "Agent.h"
#include "TempFolder.h"

namespace TevAgent {

/// The files of a node with many models, no two of which have a value in common. With and without what a model may
/// lack.
class LoadNode {
public:
    struct SchemaModel {
        std::string id;
        std::string file;                                        ///< path
        std::map<std::string, std::vector<std::string>> values;  ///< of every attribute of the instance, by its name
    };

    explicit LoadNode(std::size_t modelCount);

    Agent::Inputs inputs() const;
    std::string folder() const { return tempFolder.path(); }

    /// In the order in which they are listed.
    const std::vector<SchemaModel>& models() const { return schemaModels; }

private:
    void writeModel(std::size_t number);

    TevTest::TempFolder tempFolder;
    std::vector<SchemaModel> schemaModels;
};

}  // namespace TevAgent

#endif
