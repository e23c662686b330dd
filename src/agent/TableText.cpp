#include "TableText.h"

#include <algorithm>
#include <iterator>

#include "AlignedTable.h"
#include "Text.h"
#include "Utf8.h"

namespace TevAgent {

namespace {

std::string cell(const std::string& text) {
    return Text::escaped(Utf8::repaired(text));
}

AlignedTable::Row rowOf(const Instance& instance) {
    AlignedTable::Row row;
    for (const Instance::Attribute& attribute : instance.attributes) {
        std::string values;
        for (const std::string& value : attribute.values) {
            values += cell(value) + ", ";
        }
        row.push_back(values.substr(0, values.empty() ? 0 : values.size() - 2));
    }
    return row;
}

/// How `subject` came out, in a line.
std::string outcomeOf(const std::string& subject, bool isGood, const std::string& word, const std::string& remark,
                      const Screen& screen) {
    return cell(subject) + ": " + screen.emphasised(isGood ? Screen::Emphasis::Good : Screen::Emphasis::Bad, word) +
           (remark.empty() ? "" : ": " + cell(remark)) + "\n";
}

}  // namespace

std::string TableText::of(const std::vector<std::string>& attributeNames, const std::vector<Instance>& instances,
                          const Screen& screen) {
    AlignedTable::Row header;
    std::transform(attributeNames.begin(), attributeNames.end(), std::back_inserter(header), cell);
    std::vector<AlignedTable::Row> rows;
    std::transform(instances.begin(), instances.end(), std::back_inserter(rows), rowOf);
    return AlignedTable::of(header, rows, screen);
}

std::string TableText::of(const CheckResult& result, const Screen& screen) {
    return outcomeOf(result.item, result.isPassed, result.isPassed ? "passed" : "failed", result.remark, screen);
}

std::string TableText::of(const ExportResult& result, const Screen& screen) {
    return outcomeOf(result.model, result.isExported, result.isExported ? "exported" : "failed", result.message,
                     screen);
}

}  // namespace TevAgent
