#ifndef TEV_AGENT_INSTANCE_H
#define TEV_AGENT_INSTANCE_H

#include <string>
#include <vector>

namespace TevAgent {

/// A managed object as it was read, for showing: the attributes asked for, in that order, with their values as texts.
struct Instance {
    struct Attribute {
        std::string name;
        std::vector<std::string> values;  ///< none when the attribute has no value
    };

    std::string dn;
    std::vector<Attribute> attributes;
};

}  // namespace TevAgent

#endif
