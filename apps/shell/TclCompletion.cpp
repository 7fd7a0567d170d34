#include "TclCompletion.h"

#include "HubParams.h"
#include "TclCommand.h"
#include "TclCommands.h"
#include "TclText.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"
#include "support/HUTText.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>
#include <tcl.h>

namespace {

using Words = std::set<std::string>;

/// The command that the end of a line belongs to.
struct OpenCommand {
    std::vector<std::string> words; ///< those before the last
    std::size_t lastWord;           ///< where the last one begins, in the line
};

/// The hub's command of that name; null when it is none of them.
const TclCommand* findHubCommand(const std::string& name) {
    const std::vector<const TclCommand*> commands = listTclCommands();
    const auto found = std::find_if(commands.begin(), commands.end(), [&](const TclCommand* command) {
        return command->name == name || std::string("::") + command->name == name;
    });
    return found == commands.end() ? nullptr : *found;
}

std::vector<std::string> splitWords(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// Where what stands in a brace begins: another command, or behind one of the hub's commands more of its words.
std::size_t beginInBrace(const std::string& line, std::size_t begin, std::size_t brace) {
    const std::vector<std::string> words = splitWords(line.substr(begin, brace - begin));
    return !words.empty() && findHubCommand(words.front()) ? begin : brace + 1;
}

OpenCommand findOpenCommand(const std::string& line) {
    std::vector<std::size_t> begins{0};
    std::size_t lastWord = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\\') {
            ++i;
        } else if (c == '[' || c == '{') {
            begins.push_back(c == '[' ? i + 1 : beginInBrace(line, begins.back(), i));
            lastWord = i + 1;
        } else if ((c == ']' || c == '}') && begins.size() > 1) {
            begins.pop_back();
        } else if (c == ';' || c == '\n') {
            begins.back() = i + 1;
            lastWord = i + 1;
        } else if (c == ' ' || c == '\t' || (c == '"' && lastWord == i)) {
            lastWord = i + 1;
        }
    }
    return {splitWords(line.substr(begins.back(), lastWord - begins.back())), lastWord};
}

/// The elements that a Tcl command gives; the interpreter's result stays as it was.
std::vector<std::string> ask(Tcl_Interp* interp, const std::vector<std::string>& words) {
    Tcl_InterpState state = Tcl_SaveInterpState(interp, TCL_OK);
    const TclRef command(makeList(words));
    std::vector<std::string> elements;
    int count = 0;
    Tcl_Obj** found = nullptr;
    if (Tcl_EvalObjEx(interp, command.get(), TCL_EVAL_GLOBAL | TCL_EVAL_DIRECT) == TCL_OK &&
        Tcl_ListObjGetElements(nullptr, Tcl_GetObjResult(interp), &count, &found) == TCL_OK)
        for (int i = 0; i < count; ++i) elements.emplace_back(Tcl_GetString(found[i]));
    Tcl_RestoreInterpState(interp, state);
    return elements;
}

Words findCommands(Tcl_Interp* interp, const std::string& typed) {
    std::string pattern;
    for (char c : typed) pattern += std::string(c == '*' || c == '?' || c == '[' || c == '\\' ? "\\" : "") + c;
    const std::size_t tail = typed.rfind("::");
    const std::string parent = tail == std::string::npos ? "::" : typed.substr(0, tail + 2);
    Words names;
    const auto add = [&](std::string name, const char* end) {
        if (typed.rfind("::", 0) != 0 && name.rfind("::", 0) == 0) name.erase(0, 2);
        names.insert(name + end);
    };
    for (const std::string& name : ask(interp, {"info", "commands", pattern + "*"})) add(name, "");
    for (const std::string& name : ask(interp, {"namespace", "children", parent})) add(name, "::");
    return names;
}

/// The directory that Tcl takes a name for, with "~" expanded; empty where there is no such user.
std::string expanded(const std::string& dir) {
    Tcl_DString text;
    Tcl_DStringInit(&text); // without a user Tcl leaves it alone
    const char* name = Tcl_TranslateFileName(nullptr, dir.c_str(), &text);
    std::string found = name ? name : "";
    Tcl_DStringFree(&text);
    return found;
}

Words findFiles(const std::string& typed) {
    const std::size_t slash = typed.rfind('/');
    const std::string dir = slash == std::string::npos ? "" : typed.substr(0, slash + 1);
    const std::string place = expanded(dir.empty() ? "." : dir);
    Words names;
    for (const std::string& name : HUTFile::createFileIter(place))
        names.insert(dir + name + (HUTFile::isDirectory(place + '/' + name) ? "/" : ""));
    return names;
}

void addStores(Words& names) {
    for (const HSCPlazQStore* store : HSCPlazMgr::getInstance().getHub().getStores()) names.insert(store->getName());
}

void addItems(Words& names) {
    for (const HSCPlazQStore* store : HSCPlazMgr::getInstance().getHub().getStores())
        for (const HSCPlazQItem* item : store->getItems()) names.insert(item->getName());
}

/// In capitals, as they are listed, or as @p typed begins.
void addProperties(Words& names, const std::string& typed) {
    const bool isLow = !typed.empty() && typed.front() >= 'a' && typed.front() <= 'z';
    for (const std::string& name : listPropertyNames()) names.insert(isLow ? HUTText::lowered(name) : name);
}

Words findSubjects(TclSubject subject, const std::string& typed) {
    Words names;
    switch (subject) {
    case TclSubject::nothing:
        break;
    case TclSubject::items:
        addItems(names);
        break;
    case TclSubject::stores:
        addStores(names);
        break;
    case TclSubject::objects:
        addProperties(names, typed);
        addStores(names);
        addItems(names);
        break;
    case TclSubject::params:
        for (const HPAParam* param : findParams("", true)) names.insert(param->getName());
        break;
    }
    return names;
}

Words findOptions(const TclCommand& command) {
    Words names;
    for (const TclOption* option = command.options.data(); option->name; ++option) names.insert(option->name);
    return names;
}

Words findWords(Tcl_Interp* interp, const OpenCommand& open, const std::string& typed) {
    if (open.words.empty()) {
        const Words names = findCommands(interp, typed);
        return names.empty() ? findFiles(typed) : names;
    }
    const TclCommand* command = findHubCommand(open.words.front());
    if (!command) return findFiles(typed);
    if (typed.rfind('-', 0) == 0) return findOptions(*command);
    if (open.words.back() == tclNameOf(commandOptions::store)) return findSubjects(TclSubject::stores, typed);
    return findSubjects(command->subject, typed);
}

std::string quoted(const std::string& word) {
    return Tcl_GetString(TclRef(makeList({word})).get());
}

} // namespace

Completion completeTcl(Tcl_Interp* interp, const std::string& before) {
    const OpenCommand open = findOpenCommand(before);
    const std::string typed = before.substr(open.lastWord);
    Completion completion{open.lastWord, {}};
    for (const std::string& word : findWords(interp, open, typed))
        if (word.compare(0, typed.size(), typed) == 0) completion.words.push_back(quoted(word));
    return completion;
}
