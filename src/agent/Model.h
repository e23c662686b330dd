#ifndef TEV_AGENT_MODEL_H
#define TEV_AGENT_MODEL_H

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace TevAgent {

/// What the head of one model file tells.
struct Model {
    using Properties = std::map<std::string, std::string, std::less<>>;  ///< key, value

    std::string name;
    std::optional<std::string> version;
    std::optional<std::string> release;
    std::optional<std::string> correction;
    std::map<std::string, Properties, std::less<>> domains;  ///< by domain name
    std::vector<std::string> features;                       ///< in the file's order
    std::string file;                                        ///< absolute path
};

}  // namespace TevAgent

#endif
