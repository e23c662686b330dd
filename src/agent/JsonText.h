#ifndef TEV_AGENT_JSON_TEXT_H
#define TEV_AGENT_JSON_TEXT_H

#include <string>
#include <vector>

#include "CheckResult.h"
#include "ExportResult.h"
#include "Instance.h"

namespace TevAgent {

/// Results as JSON for programs. Bytes that are not UTF-8 are shown as U+FFFD.
class JsonText {
public:
    /// An object with one array, "schemas", that holds an object for each instance: its attributes in their order.
    /// Those of a Schema instance are a string each, null for no value, but the one that is a list, which is an array
    /// of strings; those of other classes are arrays of strings, for the agent does not know which of them are lists.
    /// Should an attribute that is no list hold several values all the same, it is an array too.
    static std::string of(const std::vector<Instance>& instances);

    /// An object with one array, "checks", that holds an object for each result: "id", "description", "result" and
    /// "remark".
    static std::string of(const std::vector<CheckResult>& results);

    /// The results that such a text holds. Throws std::exception when it is none.
    static std::vector<CheckResult> checkResults(const std::string& text);

    /// An object with one array, "exports", that holds an object for each result: "model", "exported" and "message".
    static std::string of(const std::vector<ExportResult>& results);
};

}  // namespace TevAgent

#endif
