#ifndef TEV_AGENT_TABLE_TEXT_H
#define TEV_AGENT_TABLE_TEXT_H

#include <string>
#include <vector>

#include "CheckResult.h"
#include "ExportResult.h"
#include "Instance.h"

namespace TevAgent {

/// Results as texts for people. Control characters are written as escapes, so that no value can reach for the terminal
/// or pose as a line.
class TableText {
public:
    /// A header with the attribute names, then a row for each instance, whose attributes are those of the header. The
    /// columns are aligned, two blanks apart; no value is shown as nothing, several are joined by a comma and a blank.
    static std::string of(const std::vector<std::string>& attributeNames, const std::vector<Instance>& instances);

    /// A line: the result, the id and the description, in columns, then the remark after a colon.
    static std::string of(const CheckResult& result);

    /// The last line of a check: how many results there are of each kind.
    static std::string summaryOf(const std::vector<CheckResult>& results);

    /// A line: "<model>: exported" or "<model>: failed", with the message after another colon.
    static std::string of(const ExportResult& result);
};

}  // namespace TevAgent

#endif
