#include "TableText.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "AlignedTable.h"
#include "Text.h"

namespace TevAgent {

namespace {

AlignedTable::Row rowOf(const Instance& instance) {
    AlignedTable::Row row;
    for (const Instance::Attribute& attribute : instance.attributes) {
        std::string values;
        for (const std::string& value : attribute.values) {
            values += Text::escaped(value) + ", ";
        }
        row.push_back(values.substr(0, values.empty() ? 0 : values.size() - 2));
    }
    return row;
}

}  // namespace

std::string TableText::of(const std::vector<std::string>& attributeNames, const std::vector<Instance>& instances,
                          const Screen& screen) {
    AlignedTable::Row header;
    std::transform(attributeNames.begin(), attributeNames.end(), std::back_inserter(header), Text::escaped);
    std::vector<AlignedTable::Row> rows;
    std::transform(instances.begin(), instances.end(), std::back_inserter(rows), rowOf);
    return AlignedTable::of(header, rows, screen);
}

std::string TableText::of(const CheckResult& result, const Screen& screen) {
    // Lines are written as the results come, so the widths are known by heart.
    constexpr std::size_t idWidth = 33;
    constexpr std::size_t wordWidth = 9;
    const std::string word = CheckResult::word(result.outcome);
    const bool isPlain = result.outcome != CheckResult::Outcome::Passed && !result.isBad();
    const Screen::Emphasis emphasis = result.isBad() ? Screen::Emphasis::Bad : Screen::Emphasis::Good;
    return (isPlain ? word : screen.emphasised(emphasis, word)) + std::string(wordWidth - word.size(), ' ') +
           result.id + std::string(idWidth - std::min(idWidth, result.id.size()), ' ') + result.description +
           (result.remark.empty() ? "" : ": " + Text::escaped(result.remark)) + "\n";
}

std::string TableText::summaryOf(const std::vector<CheckResult>& results) {
    std::map<CheckResult::Outcome, std::size_t> counts;
    for (const CheckResult& result : results) {
        ++counts[result.outcome];
    }
    std::string summary;
    for (const auto& [outcome, count] : counts) {
        summary += (summary.empty() ? "" : ", ") + std::to_string(count) + " " + CheckResult::word(outcome);
    }
    return summary + "\n";
}

std::string TableText::of(const ExportResult& result, const Screen& screen) {
    const std::string word = result.isExported ? screen.emphasised(Screen::Emphasis::Good, "exported")
                                               : screen.emphasised(Screen::Emphasis::Bad, "failed");
    return Text::escaped(result.model) + ": " + word +
           (result.message.empty() ? "" : ": " + Text::escaped(result.message)) + "\n";
}

std::string TableText::summaryOf(const std::vector<ExportResult>& results) {
    const auto exported =
        std::count_if(results.begin(), results.end(), [](const ExportResult& result) { return result.isExported; });
    return std::to_string(exported) + " of " + std::to_string(results.size()) + " exported\n";
}

}  // namespace TevAgent
