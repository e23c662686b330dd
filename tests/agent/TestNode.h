#ifndef TEST_NODE_H
#define TEST_NODE_H

#include <string>

#include "TempFolder.h"

namespace TevTest {

/// The files of a node with three models, as `--node` takes them.
class TestNode {
public:
    TestNode();

    std::string path() const { return folder.path(); }

    /// Adds a model file, or replaces it.
    void writeModel(const std::string& fileName, const std::string& text) const;
    void writeObjects(const std::string& text) const;

    /// The DN of a Schema instance of this node.
    static std::string schemaDn(const std::string& schemaId);

private:
    TempFolder folder;
};

}  // namespace TevTest

#endif
