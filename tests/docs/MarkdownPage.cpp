#include "MarkdownPage.h"

#include <sstream>
#include <stdexcept>

namespace TevTest {

namespace {

const std::string fence = "```";

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

}  // namespace

MarkdownPage::MarkdownPage(const std::string& text) {
    std::istringstream stream(text);
    bool isInBlock = false;
    std::size_t number = 1;
    for (std::string line; std::getline(stream, line); ++number) {
        if (line.compare(0, fence.size(), fence) == 0) {
            isInBlock = !isInBlock;
            if (isInBlock) {
                blocks.push_back({line.substr(fence.size()), number + 1});
            }
        } else if (trimmed(line).compare(0, fence.size(), fence) == 0) {
            throw std::runtime_error("line " + std::to_string(number) + ": a block does not begin with the line");
        } else if (isInBlock) {
            blocks.back().lines.push_back(line);
        } else {
            prose.push_back(line);
        }
    }
    if (isInBlock) {
        throw std::runtime_error("the last block is not closed");
    }
}

std::vector<std::vector<std::string>> MarkdownPage::rows() const {
    std::vector<std::vector<std::string>> found;
    bool isBelowHeading = false;
    for (const std::string& line : prose) {
        if (line.compare(0, 2, "|-") == 0) {
            isBelowHeading = true;
        } else if (line.compare(0, 1, "|") != 0) {
            isBelowHeading = false;
        } else if (isBelowHeading) {
            found.push_back(rowOf(line));
        }
    }
    return found;
}

std::vector<std::string> MarkdownPage::rowOf(const std::string& line) {
    std::vector<std::string> cells;
    std::string cell;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line.compare(i, 2, "\\|") == 0) {
            cell += line[++i];
        } else if (line[i] == '|') {
            cells.push_back(trimmed(cell));
            cell.clear();
        } else {
            cell += line[i];
        }
    }
    return cells;
}

std::vector<std::string> MarkdownPage::codeIn(const std::string& line) {
    std::vector<std::string> found;
    for (std::size_t begin = line.find('`'); begin != std::string::npos; begin = line.find('`', begin)) {
        const std::size_t inside = line.find_first_not_of('`', begin);
        const std::string mark = line.substr(begin, inside - begin);
        const std::size_t end = line.find(mark, inside);
        if (inside == std::string::npos || end == std::string::npos) {
            break;
        }
        // Several marks are for code that holds one; a blank keeps it from the marks.
        const std::string code = line.substr(inside, end - inside);
        found.push_back(mark.size() > 1 ? trimmed(code) : code);
        begin = end + mark.size();
    }
    return found;
}

}  // namespace TevTest
