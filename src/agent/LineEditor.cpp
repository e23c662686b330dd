#include "LineEditor.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cwchar>
#include <exception>
#include <utility>

#include "Completion.h"
#include "Failure.h"
#include "Interruption.h"
#include "Screen.h"
#include "Text.h"
#include "Utf8.h"

namespace TevAgent {

namespace {

constexpr char interruptKey = '\x03';
constexpr std::size_t mostShown = 100;  ///< candidates

/// The calling thread is in another locale while this lives.
class ThreadLocale {
public:
    explicit ThreadLocale(locale_t locale) : before(uselocale(locale)) {}
    ~ThreadLocale() { uselocale(before); }
    ThreadLocale(const ThreadLocale&) = delete;
    ThreadLocale& operator=(const ThreadLocale&) = delete;

private:
    const locale_t before;
};

/// What all of them begin with; no character is cut in two.
std::string commonBeginning(const std::vector<std::string>& candidates) {
    std::string common = candidates.front();
    for (const std::string& candidate : candidates) {
        const auto differing = std::mismatch(common.begin(), common.end(), candidate.begin(), candidate.end()).first;
        common.erase(differing, common.end());
    }
    const auto isInsideCharacter = [&](const std::string& candidate) {
        return candidate.size() > common.size() && Utf8::isContinuation(candidate[common.size()]);
    };
    while (!common.empty() && std::any_of(candidates.begin(), candidates.end(), isInsideCharacter)) {
        common.pop_back();
    }
    return common;
}

/// Whether keys could not give `text`, but a name that others chose may hold it.
bool cannotBeTyped(const std::string& text) {
    return Text::hasControl(text) || Utf8::repaired(text) != text;
}

/// The texts in columns, row by row.
std::string inColumns(const std::vector<std::string>& texts, std::size_t terminalWidth) {
    std::size_t widest = 0;
    for (const std::string& text : texts) {
        widest = std::max(widest, Utf8::columns(text));
    }
    const std::size_t columns = std::max<std::size_t>(1, terminalWidth / (widest + 2));
    std::string rows;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const bool isLast = (i + 1) % columns == 0 || i + 1 == texts.size();
        rows += texts[i] + (isLast ? "\n" : std::string(widest + 2 - Utf8::columns(texts[i]), ' '));
    }
    return rows;
}

}  // namespace

LineEditor::LineEditor(Completer lineCompleter)
    : completer(std::move(lineCompleter)),
      utf8(newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t())),
      terminal(fdopen(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0), "w"), std::fclose),
      history(history_init(), history_end),
      editor(nullptr, el_end) {
    const ThreadLocale forEditing(utf8);
    if (terminal != nullptr) {
        editor.reset(el_init("tev-agent", stdin, terminal.get(), terminal.get()));
    }
    if (editor == nullptr || history == nullptr) {
        throw Failure(ExitStatus::NotStarted, "the terminal cannot be used");
    }
    EditLine* const line = editor.get();
    el_set(line, EL_CLIENTDATA, this);
    el_set(line, EL_PROMPT, prompt);
    el_set(line, EL_EDITOR, "emacs");
    el_set(line, EL_GETCFN, read);
    // At the prompt the keys that send signals are read like any other.
    el_set(line, EL_SETTY, "-d", "-isig", nullptr);
    el_wset(line, EL_ADDFN, L"tev-complete", L"Completes a word", complete);  // el_set makes copies and loses them
    el_set(line, EL_BIND, "^I", "tev-complete", nullptr);
    el_set(line, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    HistEvent event{};
    ::history(history.get(), &event, H_SETSIZE, static_cast<int>(ShellHistory::maxLines));
    ::history(history.get(), &event, H_SETUNIQUE, 1);
    el_set(line, EL_HIST, ::history, history.get());
    for (const std::string& kept : lines.lines()) {
        ::history(history.get(), &event, H_ENTER, kept.c_str());
    }
    std::fputs("help shows the commands, Ctrl-D ends the shell\n", terminal.get());
}

LineEditor::~LineEditor() {
    editor.reset();
    if (utf8 != locale_t()) {
        freelocale(utf8);
    }
}

std::optional<LineSource::Line> LineEditor::next() {
    for (;;) {
        isDropped = false;
        isInterrupted = false;
        const ThreadLocale forEditing(utf8);
        // The library would do so only after the prompt, when the first keys may have been typed.
        el_set(editor.get(), EL_PREP_TERM, 1);
        int size = 0;
        const char* const typed = el_gets(editor.get(), &size);
        if (typed != nullptr && size > 0) {
            std::string line(typed, static_cast<std::size_t>(size));
            if (line.back() == '\n') {
                line.pop_back();
            }
            keep(line);
            return Line{line, ""};
        }
        std::fputs(isDropped ? "^C\n" : "\n", terminal.get());
        std::fflush(terminal.get());
        if (isInterrupted && Interruption::isFinal()) {
            throw Interrupted();
        }
        if (isInterrupted) {
            Interruption::forget();
        } else if (!isDropped) {
            return std::nullopt;
        }
    }
}

LineEditor& LineEditor::of(EditLine* line) {
    void* self = nullptr;
    el_get(line, EL_CLIENTDATA, &self);
    return *static_cast<LineEditor*>(self);
}

char* LineEditor::prompt(EditLine*) {
    static char text[] = "tev> ";
    return text;
}

int LineEditor::read(EditLine* line, wchar_t* character) {
    return of(line).readCharacter(character);
}

unsigned char LineEditor::complete(EditLine* line, int) {
    try {
        return of(line).completeWord();
    } catch (const std::exception&) {
        return CC_ERROR;  // the library is C
    }
}

int LineEditor::readCharacter(wchar_t* character) {
    std::mbstate_t state{};
    for (;;) {
        char byte = '\0';
        try {
            if (Interruption::readByte(STDIN_FILENO, byte) != 1) {
                return 0;  // a terminal that has gone away is one at its end
            }
        } catch (const Interrupted&) {
            isInterrupted = true;
            return -1;
        }
        if (byte == interruptKey) {
            isDropped = true;
            return 0;
        }
        constexpr auto malformed = static_cast<std::size_t>(-1);
        const std::size_t size = std::mbrtowc(character, &byte, 1, &state);
        if (size == 1) {
            return 1;
        }
        if (size == malformed) {
            state = {};
        }
    }
}

unsigned char LineEditor::completeWord() {
    const LineInfo* const line = el_line(editor.get());
    const auto begun = ShellWords::begun({line->buffer, static_cast<std::size_t>(line->cursor - line->buffer)});
    if (!begun) {
        return CC_ERROR;
    }
    const std::vector<std::string> found = candidates(*begun);
    if (isInterrupted) {
        return CC_EOF;
    }
    if (found.empty()) {
        return CC_ERROR;
    }
    const std::string added = commonBeginning(found).substr(begun->word.size());
    std::string text = ShellWords::continued(added, begun->quote);
    if (found.size() == 1 && Completion::isWhole(found.front())) {
        text += ShellWords::end(begun->quote);
    }
    if (text.empty() && found.size() > 1) {
        show(found, Completion::beginOfLevel(begun->word));
        return CC_REDISPLAY;
    }
    return el_insertstr(editor.get(), text.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
}

std::vector<std::string> LineEditor::candidates(const ShellWords::Begun& begun) {
    std::vector<std::string> found;
    // The interrupt key sends its signal meanwhile, and a component that ends the program leaves the terminal as it
    // was.
    el_set(editor.get(), EL_PREP_TERM, 0);
    try {
        const ThreadLocale outsideOfEditing(LC_GLOBAL_LOCALE);
        found = completer(begun.before, begun.word);
    } catch (const std::exception&) {
        // The operator types on.
    }
    el_set(editor.get(), EL_PREP_TERM, 1);
    isInterrupted = Interruption::isRequested();
    // A newline would end the line, and what stands behind it be another one.
    found.erase(std::remove_if(found.begin(), found.end(), cannotBeTyped), found.end());
    return found;
}

void LineEditor::show(const std::vector<std::string>& candidates, std::size_t level) {
    const std::size_t shown = std::min(candidates.size(), mostShown);
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < shown; ++i) {
        texts.push_back(Text::escaped(candidates[i].substr(level)));
    }
    std::string rows = "\n" + inColumns(texts, Screen::columnsOf(STDERR_FILENO));
    if (shown < candidates.size()) {
        rows += "and " + std::to_string(candidates.size() - shown) + " more\n";
    }
    std::fputs(rows.c_str(), terminal.get());
}

void LineEditor::keep(const std::string& line) {
    if (ShellHistory::isKept(line)) {
        HistEvent event{};
        ::history(history.get(), &event, H_ENTER, line.c_str());
        lines.add(line);
    }
}

}  // namespace TevAgent
