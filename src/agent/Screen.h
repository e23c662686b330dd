#ifndef TEV_AGENT_SCREEN_H
#define TEV_AGENT_SCREEN_H

#include <cstddef>
#include <string>
#include <string_view>

namespace TevAgent {

/// What a text for people has to keep to where it is shown. A file or a pipe has neither a width nor colours.
struct Screen {
    enum class Emphasis { Title, Good, Bad };

    static constexpr std::size_t usualWidth = 80;  ///< in columns, where nothing tells

    std::size_t width = 0;  ///< in columns; 0 when there is no limit
    bool hasColours = false;

    /// As it is just now for what is written to `descriptor`. A terminal is as wide as COLUMNS says, else as
    /// `columnsOf` has it. It has colours unless NO_COLOR is set and not empty (https://no-color.org), or TERM is
    /// "dumb", empty or not set.
    static Screen of(int descriptor);

    /// The columns of the terminal behind `descriptor`; 80 where it does not tell.
    static std::size_t columnsOf(int descriptor);

    /// `text`, which is not empty, between the sequences that make a terminal show it so; as it is without colours.
    std::string emphasised(Emphasis emphasis, std::string_view text) const;
};

}  // namespace TevAgent

#endif
