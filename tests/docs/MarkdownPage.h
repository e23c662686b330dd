#ifndef MARKDOWN_PAGE_H
#define MARKDOWN_PAGE_H

#include <cstddef>
#include <string>
#include <vector>

namespace TevTest {

/// A page of the documentation, taken apart as far as its tests look at it.
class MarkdownPage {
public:
    /// A fenced block: what stands behind the opening fence, and the lines between the fences.
    struct Block {
        std::string kind;
        std::size_t firstLine = 0;  ///< the number of the first of `lines`, counted from 1
        std::vector<std::string> lines{};
    };

    /// Throws std::runtime_error when a fence is not closed, or does not begin with its line.
    explicit MarkdownPage(const std::string& text);

    std::vector<Block> blocks;
    std::vector<std::string> prose;  ///< the lines outside of blocks

    /// The cells of each row of a table below its heading; in a cell `\|` has become `|`.
    std::vector<std::vector<std::string>> rows() const;

    /// The cells of one row; none of any other line.
    static std::vector<std::string> rowOf(const std::string& line);

    /// The inline code of a line or cell.
    static std::vector<std::string> codeIn(const std::string& line);
};

}  // namespace TevTest

#endif
