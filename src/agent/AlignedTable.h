#ifndef TEV_AGENT_ALIGNED_TABLE_H
#define TEV_AGENT_ALIGNED_TABLE_H

#include <string>
#include <vector>

#include "Screen.h"

namespace TevAgent {

/// Rows of texts in columns that are aligned, two blanks apart.
class AlignedTable {
public:
    /// Well-formed UTF-8 without control characters.
    using Row = std::vector<std::string>;

    /// The text of a table: `header`, a title for each column, then the rows, which have as many cells.
    ///
    /// Where the screen is not wide enough, the widest columns give way, and what does not fit into a cell goes on in
    /// the next line, one blank further in: before a blank, behind a mark or before a capital, and elsewhere only in a
    /// word of a cell that has more than 20 columns. Where words do not fit, or columns would have fewer than 8, each
    /// row becomes a block of lines "title: cell", with an empty line between two of them. Nothing is left out.
    static std::string of(const Row& header, const std::vector<Row>& rows, const Screen& screen);
};

}  // namespace TevAgent

#endif
