#ifndef TERMINAL_H
#define TERMINAL_H

#include <string>

namespace TevTest {

/// A terminal with the test in the place of its user. Used by one thread.
class Terminal {
public:
    /// Throws std::system_error when there can be none.
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Where programs open it.
    const std::string& path() const { return name; }

    /// What programs write to and read from, open as long as this object lives.
    int descriptor() const { return program; }

    void type(const std::string& text) const;

    /// Reads until what was shown holds `text`, and returns all that was shown so far. Throws std::runtime_error when
    /// it does not appear within a minute.
    const std::string& waitFor(const std::string& text);

    /// As waitFor, but returns what was shown up to the end of `text`, which the other functions then know no more of.
    std::string take(const std::string& text);

    /// All that was shown so far. Throws as waitFor does.
    const std::string& shown();

    /// Whether what is typed is shown.
    bool hasEcho() const;

    void setWidth(unsigned short columns) const;

private:
    /// Waits up to that long for something to be shown, and reads it.
    void readMore(int milliseconds);

    int user = -1;
    int program = -1;
    std::string name;
    std::string text;
};

}  // namespace TevTest

#endif
