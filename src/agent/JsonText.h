#ifndef TEV_AGENT_JSON_TEXT_H
#define TEV_AGENT_JSON_TEXT_H

#include <string>
#include <vector>

#include "CheckResult.h"
#include "Instance.h"

namespace TevAgent {

/// Results as JSON for programs. Bytes that are not UTF-8 are shown as U+FFFD.
class JsonText {
public:
    /// An object with one array, "schemas", that holds an object for each instance: its attributes in their order, each
    /// a string, null for no value; the attribute that is a list, and any other with several values, an array of
    /// strings.
    static std::string of(const std::vector<Instance>& instances);

    /// An object with one array, "checks", that holds an object for each result: "item", "passed" and "remark".
    static std::string of(const std::vector<CheckResult>& results);
};

}  // namespace TevAgent

#endif
