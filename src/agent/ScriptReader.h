#ifndef TEV_AGENT_SCRIPT_READER_H
#define TEV_AGENT_SCRIPT_READER_H

#include <cstddef>

#include "LineSource.h"

namespace TevAgent {

/// The lines of standard input, of which nothing is read ahead, so that a command can read what follows its line. Each
/// ends with a newline, with or without a carriage return before it; the last one need not.
class ScriptReader : public LineSource {
public:
    static constexpr std::size_t maxBytes = 65536;  ///< of one line; a longer one, or one with a null byte, has a fault

    std::optional<Line> next() override;
};

}  // namespace TevAgent

#endif
