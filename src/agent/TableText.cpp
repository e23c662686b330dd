#include "TableText.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "Text.h"
#include "Utf8.h"

namespace TevAgent {

namespace {

constexpr std::size_t gap = 2;

using Row = std::vector<std::string>;

std::string cell(const std::string& text) {
    return Text::escaped(Utf8::repaired(text));
}

Row rowOf(const Instance& instance) {
    Row row;
    for (const Instance::Attribute& attribute : instance.attributes) {
        std::string values;
        for (const std::string& value : attribute.values) {
            values += cell(value) + ", ";
        }
        row.push_back(values.substr(0, values.empty() ? 0 : values.size() - 2));
    }
    return row;
}

std::vector<std::size_t> widthsOf(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], Utf8::columns(row[column]));
        }
    }
    return widths;
}

std::string lineOf(const Row& row, const std::vector<std::size_t>& widths) {
    std::string line;
    std::size_t wanted = 0;
    std::size_t length = 0;
    for (std::size_t column = 0; column < row.size(); ++column) {
        // Blanks are added in front of what follows them, so that no line ends in any.
        if (!row[column].empty()) {
            line.append(wanted - length, ' ').append(row[column]);
            length = wanted + Utf8::columns(row[column]);
        }
        wanted += widths[column] + gap;
    }
    return line + "\n";
}

std::string outcomeOf(const std::string& outcome, const std::string& remark) {
    return cell(remark.empty() ? outcome : outcome + ": " + remark) + "\n";
}

}  // namespace

std::string TableText::of(const std::vector<std::string>& attributeNames, const std::vector<Instance>& instances) {
    std::vector<Row> rows(1);
    std::transform(attributeNames.begin(), attributeNames.end(), std::back_inserter(rows.front()), cell);
    std::transform(instances.begin(), instances.end(), std::back_inserter(rows), rowOf);
    const std::vector<std::size_t> widths = widthsOf(rows);
    std::string table;
    for (const Row& row : rows) {
        table += lineOf(row, widths);
    }
    return table;
}

std::string TableText::of(const CheckResult& result) {
    // Lines are written as the results come, so the widths are known by heart.
    constexpr std::size_t idWidth = 33;
    constexpr std::size_t wordWidth = 9;
    const auto padded = [](const std::string& text, std::size_t width) {
        return text + std::string(width - std::min(width, text.size()), ' ');
    };
    return outcomeOf(
        padded(CheckResult::word(result.outcome), wordWidth) + padded(result.id, idWidth) + result.description,
        result.remark);
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

std::string TableText::of(const ExportResult& result) {
    return outcomeOf(result.model + (result.isExported ? ": exported" : ": failed"), result.message);
}

}  // namespace TevAgent
