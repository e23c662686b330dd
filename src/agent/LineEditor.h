#ifndef TEV_AGENT_LINE_EDITOR_H
#define TEV_AGENT_LINE_EDITOR_H

#include <histedit.h>
#include <locale.h>

#include <cstddef>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "LineSource.h"
#include "ShellHistory.h"
#include "ShellWords.h"

namespace TevAgent {

/// The lines that an operator types on the terminal of standard input, with a history and completion. The prompt, and
/// all else that is not a result, goes to standard error, which is that terminal, too.
///
/// While a line is edited the calling thread, and no other, is in a locale of UTF-8. The terminal is as it was before
/// whenever this class does not wait for a key.
class LineEditor : public LineSource {
public:
    /// What the last word of a line may become: given the words before it and its beginning. What it throws is no
    /// concern of the line: there are no candidates then.
    using Completer =
        std::function<std::vector<std::string>(const std::vector<std::string>& before, const std::string& begun)>;

    /// Throws `Failure` (not started) when the terminal cannot be used.
    explicit LineEditor(Completer lineCompleter);
    ~LineEditor() override;

    /// A signal that is not final, or the interrupt key, drops the line that is typed, and another one is read.
    std::optional<Line> next() override;

private:
    static LineEditor& of(EditLine* line);
    static char* prompt(EditLine*);
    static int read(EditLine* line, wchar_t* character);
    static unsigned char complete(EditLine* line, int);

    int readCharacter(wchar_t* character);
    unsigned char completeWord();
    /// Asks the completer while the terminal and the locale are the program's own. What cannot be typed is left out.
    std::vector<std::string> candidates(const ShellWords::Begun& begun);
    /// Shows the candidates, which have all before `level` in common, without that.
    void show(const std::vector<std::string>& candidates, std::size_t level);
    void keep(const std::string& line);

    const Completer completer;
    const locale_t utf8;
    ShellHistory lines;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> terminal;
    std::unique_ptr<History, void (*)(History*)> history;
    std::unique_ptr<EditLine, void (*)(EditLine*)> editor;
    bool isDropped = false;      ///< the line, by the interrupt key
    bool isInterrupted = false;  ///< the reading, by a signal
};

}  // namespace TevAgent

#endif
