#ifndef TEV_AGENT_CHECK_SUBJECT_H
#define TEV_AGENT_CHECK_SUBJECT_H

#include <string>
#include <vector>

namespace TevAgent {

/// What is checked. Texts are empty where nothing is named.
struct CheckSubject {
    std::string library;                  ///< of the component
    std::vector<std::string> others;      ///< libraries of components that it depends on
    std::string configuration;            ///< file, handed to each component
    std::string objects;                  ///< file of managed objects, in place of the check's own
    std::string className;                ///< whose instances are listed and read; the routed one when empty
    std::string parent;                   ///< DN that they stand under; as routed when empty
    std::vector<std::string> attributes;  ///< that are read; those of Schema are known
};

}  // namespace TevAgent

#endif
