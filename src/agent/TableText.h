#ifndef TEV_AGENT_TABLE_TEXT_H
#define TEV_AGENT_TABLE_TEXT_H

#include <string>
#include <vector>

#include "CheckResult.h"
#include "ExportResult.h"
#include "Instance.h"
#include "Screen.h"

namespace TevAgent {

/// Results as texts for people. Control characters are written as escapes, so that no value can reach for the terminal
/// or pose as a line.
class TableText {
public:
    /// An `AlignedTable` for the screen: a header with the attribute names, then a row for each instance, whose
    /// attributes are those of the header. No value is shown as nothing, several are joined by a comma and a blank.
    static std::string of(const std::vector<std::string>& attributeNames, const std::vector<Instance>& instances,
                          const Screen& screen = {});

    /// A line: the result, the id and the description, in columns, then the remark after a colon. The
    /// word for the result has a colour on a screen that has any, for one that is good or bad.
    static std::string of(const CheckResult& result, const Screen& screen = {});

    /// The last line of a check: how many results there are of each kind.
    static std::string summaryOf(const std::vector<CheckResult>& results);

    /// A line: "<model>: exported" or "<model>: failed", with the message after another colon. The word as
    /// above.
    static std::string of(const ExportResult& result, const Screen& screen = {});

    /// The last line of an export of every model: how many were exported, of how many.
    static std::string summaryOf(const std::vector<ExportResult>& results);
};

}  // namespace TevAgent

#endif
