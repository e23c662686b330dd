#include "AlignedTable.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <numeric>
#include <optional>
#include <string_view>

#include "Utf8.h"

namespace TevAgent {

namespace {

using Row = AlignedTable::Row;
using Widths = std::vector<std::size_t>;

constexpr std::size_t gap = 2;
constexpr std::size_t narrowest = 8;     // of columns that had to give way
constexpr std::size_t longestWord = 20;  // of a cell that is never broken, in columns

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

/// Whether a text may go on in the next line with `next` behind `last`: before a blank, behind a mark, before a
/// capital.
bool isBeforeBlank(char, char next) {
    return next == ' ';
}
bool isBehindMark(char last, char) {
    return std::strchr(",;:/.-_", last) != nullptr;
}
bool isHump(char last, char next) {
    return last >= 'a' && last <= 'z' && next >= 'A' && next <= 'Z';
}

/// How wide a column has to be so that no word of `text` is broken; those of further lines are one blank further in.
std::size_t widestWord(std::string_view text) {
    std::size_t widest = 0;
    std::size_t begin = 0;
    for (std::size_t end = 1; end <= text.size(); ++end) {
        const bool isEnd = end == text.size() || isBeforeBlank(text[end - 1], text[end]) ||
                           isBehindMark(text[end - 1], text[end]) || isHump(text[end - 1], text[end]);
        if (isEnd) {
            // Where the line is broken the blank in front is dropped, and the indent takes its place.
            const bool isIndented = begin > 0 && text[begin] != ' ';
            widest = std::max(widest, Utf8::columns(text.substr(begin, end - begin)) + (isIndented ? 1 : 0));
            begin = end;
        }
    }
    return widest;
}

/// What the columns need at least: no title is broken in the middle of a word, and no cell but in a very long one.
Widths leastOf(const Row& header, const std::vector<Row>& rows, const Widths& natural) {
    Widths least;
    std::transform(header.begin(), header.end(), natural.begin(), std::back_inserter(least),
                   [](const std::string& title, std::size_t width) {
                       return std::max(widestWord(title), std::min(width, narrowest));
                   });
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            least[column] = std::max(least[column], std::min(widestWord(row[column]), longestWord));
        }
    }
    return least;
}

std::size_t sumOf(const Widths& widths) {
    return std::accumulate(widths.begin(), widths.end(), std::size_t{0});
}

/// Takes one off the widest column that has more than it needs at least, of two the latter; false when there is none.
bool giveWay(Widths& widths, const Widths& least) {
    std::size_t* widest = nullptr;
    for (std::size_t column = 0; column < widths.size(); ++column) {
        if (widths[column] > least[column] && (widest == nullptr || widths[column] >= *widest)) {
            widest = &widths[column];
        }
    }
    if (widest == nullptr) {
        return false;
    }
    --*widest;
    return true;
}

/// The widths when all columns have `total`: the widest ones have given way. Nothing when the words do not fit.
std::optional<Widths> fitted(Widths widths, const Widths& least, std::size_t total) {
    for (std::size_t column = 0; column < widths.size(); ++column) {
        widths[column] = std::max(least[column], std::min(widths[column], total));
    }
    while (sumOf(widths) > total) {
        if (!giveWay(widths, least)) {
            return std::nullopt;
        }
    }
    return widths;
}

/// Where the first line of `text` ends best if it may have `limit` bytes: before a blank, else behind a mark, else
/// before a capital.
std::size_t endOfLine(std::string_view text, std::size_t limit) {
    for (bool (*isEnd)(char, char) : {isBeforeBlank, isBehindMark, isHump}) {
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
    const std::size_t gaps = (header.size() - 1) * gap;
    const std::size_t available = screen.width > gaps ? screen.width - gaps : 0;
    const std::optional<Widths> widths = fitted(natural, leastOf(header, rows, natural), available);
    if (!widths) {
        return blocksOf(header, rows, screen);
    }
    return tableOf(wrapped({header}, *widths), wrapped(rows, *widths), *widths, screen);
}

}  // namespace TevAgent
