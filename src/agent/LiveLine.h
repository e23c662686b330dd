#ifndef TEV_AGENT_LIVE_LINE_H
#define TEV_AGENT_LIVE_LINE_H

#include <string>

namespace TevAgent {

/// A line that tells how far a command is, written over again and again: the last one of standard error, where that is
/// a terminal; nothing is written elsewhere. Used by one thread.
class LiveLine {
public:
    LiveLine();
    /// Takes the line away.
    ~LiveLine();
    LiveLine(const LiveLine&) = delete;
    LiveLine& operator=(const LiveLine&) = delete;

    /// Shows `text`, without what the terminal has no room for.
    void show(const std::string& text);

    /// Takes the line away, so that something else can be written in its place.
    void clear();

private:
    const bool isTerminal;
    std::string shown;
};

}  // namespace TevAgent

#endif
