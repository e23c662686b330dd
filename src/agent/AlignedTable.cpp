#include "AlignedTable.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <iterator>
#include <numeric>
#include <string_view>

#include "Utf8.h"

namespace TevAgent {

namespace {

using Row = AlignedTable::Row;
using Widths = std::vector<std::size_t>;

constexpr std::size_t gap = 2;
constexpr std::size_t narrowest = 8;  // of columns that had to give way

Widths widthsOf(const Row& header, const std::vector<Row>& rows) {
    Widths widths;
    std::transform(header.begin(), header.end(), std::back_inserter(widths), Utf8::columns);
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], Utf8::columns(row[column]));
        }
    }
    return widths;
}

/// The widths when all columns and the gaps between them have `total`: the widest ones have given way, of two the
/// latter.
Widths fitted(Widths widths, std::size_t total) {
    const std::size_t gaps = (widths.size() - 1) * gap;
    const std::size_t available = total > gaps ? total - gaps : 0;
    for (std::size_t& width : widths) {
        width = std::min(width, available);
    }
    for (std::size_t sum = std::accumulate(widths.begin(), widths.end(), std::size_t{0}); sum > available; --sum) {
        --*std::max_element(widths.rbegin(), widths.rend());
    }
    return widths;
}

/// Where the first line of `text` ends best if it may have `limit` bytes: before a blank, else behind a mark, else
/// before a capital.
std::size_t endOfLine(std::string_view text, std::size_t limit) {
    const auto isBlank = [](char, char next) { return next == ' '; };
    const auto isBehindMark = [](char last, char) { return std::strchr(",;:/.-_", last) != nullptr; };
    const auto isHump = [](char last, char next) { return last >= 'a' && last <= 'z' && next >= 'A' && next <= 'Z'; };
    for (bool (*isEnd)(char, char) : {+isBlank, +isBehindMark, +isHump}) {
        for (std::size_t end = limit; end > 0; --end) {
            if (isEnd(text[end - 1], text[end])) {
                return end;
            }
        }
    }
    return limit;
}

/// Takes the next line off `text`: as much as fits into `width` columns and ends well.
std::string_view takeLine(std::string_view& text, std::size_t width) {
    const std::size_t limit = Utf8::fitted(text, width).size();
    const std::string_view line = text.substr(0, limit == text.size() ? limit : endOfLine(text, limit));
    text.remove_prefix(line.size());
    if (!text.empty() && text.front() == ' ') {
        text.remove_prefix(1);  // the new line stands for it
    }
    return line;
}

/// Adds the lines of `row`, whose cells are no wider than `widths`, to `lines`.
void addWrapped(std::vector<Row>& lines, const Row& row, const Widths& widths) {
    std::vector<std::string_view> rests(row.begin(), row.end());
    const auto isEmpty = [](std::string_view rest) { return rest.empty(); };
    for (std::string indent; indent.empty() || !std::all_of(rests.begin(), rests.end(), isEmpty); indent = " ") {
        Row& line = lines.emplace_back();
        for (std::size_t column = 0; column < rests.size(); ++column) {
            const std::string_view part = takeLine(rests[column], widths[column] - indent.size());
            line.push_back(part.empty() ? "" : indent + std::string(part));
        }
    }
}

std::vector<Row> wrapped(const std::vector<Row>& rows, const Widths& widths) {
    std::vector<Row> lines;
    for (const Row& row : rows) {
        addWrapped(lines, row, widths);
    }
    return lines;
}

std::string lineOf(const Row& row, const Widths& widths) {
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
    return line;
}

std::string tableOf(const std::vector<Row>& header, const std::vector<Row>& rows, const Widths& widths,
                    const Screen& screen) {
    std::string table;
    for (const Row& row : header) {
        table += screen.emphasised(Screen::Emphasis::Title, lineOf(row, widths)) + "\n";
    }
    for (const Row& row : rows) {
        table += lineOf(row, widths) + "\n";
    }
    return table;
}

std::string blocksOf(const Row& header, const std::vector<Row>& rows, const Screen& screen) {
    std::string blocks;
    for (const Row& row : rows) {
        blocks += blocks.empty() ? "" : "\n";
        for (std::size_t column = 0; column < row.size(); ++column) {
            blocks += screen.emphasised(Screen::Emphasis::Title, header[column] + ":") +
                      (row[column].empty() ? "" : " " + row[column]) + "\n";
        }
    }
    return blocks;
}

}  // namespace

std::string AlignedTable::of(const Row& header, const std::vector<Row>& rows, const Screen& screen) {
    const Widths natural = widthsOf(header, rows);
    if (screen.width == 0) {
        return tableOf({header}, rows, natural, screen);
    }
    const Widths widths = fitted(natural, screen.width);
    const auto isTooNarrow = [](std::size_t width, std::size_t wanted) { return width < std::min(wanted, narrowest); };
    if (!std::equal(widths.begin(), widths.end(), natural.begin(), std::not_fn(isTooNarrow))) {
        return blocksOf(header, rows, screen);
    }
    return tableOf(wrapped({header}, widths), wrapped(rows, widths), widths, screen);
}

}  // namespace TevAgent
