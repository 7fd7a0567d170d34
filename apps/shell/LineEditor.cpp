#include "LineInput.h"

#include "support/HUTFile.h"
#include "support/HUTText.h"

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <histedit.h>
#include <iostream>
#include <string_view>

namespace {

constexpr int historyLength = 1000;

/// What all of @p words begin with.
std::string commonBeginning(const std::vector<std::string>& words) {
    std::string common = words.front();
    for (const std::string& word : words) {
        const auto end = std::mismatch(common.begin(), common.end(), word.begin(), word.end()).first;
        common.erase(end, common.end());
    }
    // Two characters may begin with the same bytes.
    return HUTText::cutToSize(words.front(), common.size());
}

/// The editor goes by the locale to know where characters end; in one that knows ASCII only it would lose all others.
void useUtf8() {
    std::setlocale(LC_CTYPE, "");
    constexpr std::string_view euro = "\xE2\x82\xAC";
    if (std::mblen(euro.data(), euro.size()) != static_cast<int>(euro.size())) std::setlocale(LC_CTYPE, "C.UTF-8");
}

using HistoryList = std::unique_ptr<History, void (*)(History*)>;

/// A history with what the file holds.
HistoryList loadHistory(const std::string& file) {
    HistoryList list(history_init(), history_end);
    HistEvent event{};
    history(list.get(), &event, H_SETSIZE, historyLength);
    history(list.get(), &event, H_SETUNIQUE, 1);
    if (HUTFile::exists(file)) history(list.get(), &event, H_LOAD, file.c_str());
    return list;
}

void add(History* list, const std::string& command) {
    HistEvent event{};
    history(list, &event, H_ENTER, command.c_str());
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// The history as its file holds it.
std::string toText(History* list) {
    const File file(std::tmpfile(), std::fclose); // raw: libedit saves to a FILE only
    HistEvent event{};
    if (!file || history(list, &event, H_SAVE_FP, file.get()) < 0) return {};
    std::string text(static_cast<std::size_t>(std::max(std::ftell(file.get()), 0L)), '\0');
    std::rewind(file.get());
    return std::fread(text.data(), 1, text.size(), file.get()) == text.size() ? text : std::string();
}

class LineEditor : public LineInput {
public:
    LineEditor(std::function<Completion(const std::string&)> complete, const std::string& historyFile)
        : m_complete(std::move(complete)), m_historyFile(historyFile), m_history(loadHistory(historyFile)) {
        useUtf8();
        m_editor.reset(el_init("plaz", stdin, stdout, stderr));
        EditLine* editor = m_editor.get();
        el_set(editor, EL_CLIENTDATA, this);
        el_set(editor, EL_PROMPT, getPrompt);
        el_set(editor, EL_EDITOR, "emacs");
        el_set(editor, EL_HIST, history, m_history.get());
        // The narrow form would copy the names and never free them.
        el_wset(editor, EL_ADDFN, L"plaz-complete", L"complete the word", onTab);
        el_set(editor, EL_BIND, "^I", "plaz-complete", nullptr);
        // While a line is edited Ctrl-C and Ctrl-Z are keys like others: a signal would leave the line half read.
        el_set(editor, EL_SETTY, "-d", "-isig", nullptr);
        el_wset(editor, EL_ADDFN, L"plaz-drop", L"throw the line away", onCtrlC);
        el_set(editor, EL_BIND, "^C", "plaz-drop", nullptr);
        el_wset(editor, EL_ADDFN, L"plaz-stop", L"stop the shell until it is continued", onCtrlZ);
        el_set(editor, EL_BIND, "^Z", "plaz-stop", nullptr);
    }

    Outcome read(const std::string& prompt, std::string& line) override {
        m_prompt = prompt;
        m_isDropped = false;
        int count = 0;
        el_set(m_editor.get(), EL_PREP_TERM, 1); // before the prompt: what is typed at once is edited already
        const char* text = el_gets(m_editor.get(), &count);
        if (m_isDropped) return Outcome::dropped;
        if (!text || count <= 0) {
            std::cout << std::endl;
            return Outcome::end;
        }
        line.assign(text, static_cast<std::size_t>(count));
        if (line.back() == '\n') line.pop_back();
        return Outcome::line;
    }

    void remember(const std::string& command) override {
        add(m_history.get(), command);
        // Other shells add to the file as well.
        const HistoryList all = loadHistory(m_historyFile);
        add(all.get(), command);
        const std::string text = toText(all.get());
        if (!text.empty() && HUTFile::mkDirRecursive(m_historyFile.substr(0, m_historyFile.rfind('/'))))
            HUTFile::writeAtomically(m_historyFile, text, true);
    }

private:
    static LineEditor& of(EditLine* editor) {
        void* self = nullptr;
        el_get(editor, EL_CLIENTDATA, &self);
        return *static_cast<LineEditor*>(self);
    }
    static char* getPrompt(EditLine* editor) { return of(editor).m_prompt.data(); }
    static unsigned char onTab(EditLine* editor, int) { return of(editor).completeWord(); }
    static unsigned char onCtrlC(EditLine* editor, int) {
        of(editor).m_isDropped = true;
        std::cout << "^C\n" << std::flush;
        return CC_NEWLINE;
    }

    static unsigned char onCtrlZ(EditLine* editor, int) {
        el_set(editor, EL_PREP_TERM, 0);
        std::raise(SIGTSTP);
        el_set(editor, EL_PREP_TERM, 1);
        return CC_REDISPLAY;
    }

    unsigned char completeWord() {
        const LineInfo* info = el_line(m_editor.get());
        const std::string before(info->buffer, info->cursor);
        const Completion found = m_complete(before);
        if (found.words.empty()) return CC_ERROR;
        const std::string typed = before.substr(found.begin);
        std::string common = commonBeginning(found.words);
        if (found.words.size() > 1 && common.size() <= typed.size()) {
            std::cout << '\n';
            for (const std::string& word : found.words) std::cout << HUTText::printable(word) << '\n';
            std::cout << std::flush;
            return CC_REDISPLAY;
        }
        const bool goesOn = common.back() == ':' || common.back() == '/';
        if (found.words.size() == 1 && !goesOn) common += ' ';
        el_deletestr(m_editor.get(), static_cast<int>(HUTText::decode(typed).size()));
        if (el_insertstr(m_editor.get(), common.c_str()) != 0) el_insertstr(m_editor.get(), typed.c_str());
        return CC_REFRESH;
    }

    std::function<Completion(const std::string&)> m_complete;
    std::string m_historyFile;
    std::string m_prompt;
    bool m_isDropped = false;
    HistoryList m_history;
    std::unique_ptr<EditLine, void (*)(EditLine*)> m_editor{nullptr, el_end};
};

} // namespace

std::unique_ptr<LineInput> makeLineEditor(std::function<Completion(const std::string& before)> complete,
                                          const std::string& historyFile) {
    return std::make_unique<LineEditor>(std::move(complete), historyFile);
}
