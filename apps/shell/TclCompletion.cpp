#include "TclCompletion.h"

#include "HubParams.h"
#include "ObjectProperties.h"
#include "TclCommands.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"

#include <algorithm>
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

OpenCommand findOpenCommand(const std::string& line) {
    std::vector<std::size_t> begins{0};
    std::size_t lastWord = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\\') {
            ++i;
        } else if (c == '[' || c == '{') {
            begins.push_back(i + 1);
            lastWord = i + 1;
        } else if ((c == ']' || c == '}') && begins.size() > 1) {
            begins.pop_back();
        } else if (c == ';' || c == '\n') {
            begins.back() = i + 1;
            lastWord = i + 1;
        } else if (c == ' ' || c == '\t') {
            lastWord = i + 1;
        }
    }
    OpenCommand command{{}, lastWord};
    std::istringstream stream(line.substr(begins.back(), lastWord - begins.back()));
    for (std::string word; stream >> word;) command.words.push_back(word);
    return command;
}

/// The elements that a Tcl command gives; the interpreter's result stays as it was.
std::vector<std::string> ask(Tcl_Interp* interp, const std::vector<std::string>& words) {
    Tcl_InterpState state = Tcl_SaveInterpState(interp, TCL_OK);
    Tcl_Obj* command = Tcl_NewListObj(0, nullptr);
    Tcl_IncrRefCount(command);
    for (const std::string& word : words)
        Tcl_ListObjAppendElement(nullptr, command, Tcl_NewStringObj(word.data(), static_cast<int>(word.size())));
    std::vector<std::string> elements;
    int count = 0;
    Tcl_Obj** found = nullptr;
    if (Tcl_EvalObjEx(interp, command, TCL_EVAL_GLOBAL | TCL_EVAL_DIRECT) == TCL_OK &&
        Tcl_ListObjGetElements(nullptr, Tcl_GetObjResult(interp), &count, &found) == TCL_OK)
        for (int i = 0; i < count; ++i) elements.emplace_back(Tcl_GetString(found[i]));
    Tcl_DecrRefCount(command);
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

Words findFiles(const std::string& typed) {
    const std::size_t slash = typed.rfind('/');
    const std::string dir = slash == std::string::npos ? "" : typed.substr(0, slash + 1);
    Words names;
    for (const std::string& name : HUTFile::createFileIter(dir.empty() ? "." : dir))
        names.insert(dir + name + (HUTFile::isDirectory(dir + name) ? "/" : ""));
    return names;
}

void addStores(Words& names) {
    for (const HSCPlazQStore* store : HSCPlazMgr::getInstance().getHub().getStores()) names.insert(store->getName());
}

void addItems(Words& names) {
    for (const HSCPlazQStore* store : HSCPlazMgr::getInstance().getHub().getStores())
        for (const HSCPlazQItem* item : store->getItems()) names.insert(item->getName());
}

template <typename Native> void addProperties(Words& names) {
    for (const auto& property : propertiesOf<Native>()) names.insert(property.name);
}

Words findSubjects(PlazCommand::Subject subject) {
    Words names;
    switch (subject) {
    case PlazCommand::Subject::nothing:
        break;
    case PlazCommand::Subject::items:
        addItems(names);
        break;
    case PlazCommand::Subject::stores:
        addStores(names);
        break;
    case PlazCommand::Subject::objects:
        addProperties<HSCPlazQStore>(names);
        addProperties<HSCPlazQItem>(names);
        addStores(names);
        addItems(names);
        break;
    case PlazCommand::Subject::params:
        for (const HPAParam* param : findParams("", true)) names.insert(param->getName());
        break;
    }
    return names;
}

Words findWords(Tcl_Interp* interp, const OpenCommand& open, const std::string& typed) {
    if (open.words.empty()) return findCommands(interp, typed);
    const std::string& name = open.words.front();
    const std::vector<PlazCommand> commands = listPlazCommands();
    const auto command = std::find_if(commands.begin(), commands.end(), [&](const PlazCommand& one) {
        return one.name == name || "::" + one.name == name;
    });
    if (command == commands.end()) return findFiles(typed);
    if (typed.rfind('-', 0) == 0) return {command->options.begin(), command->options.end()};
    if (open.words.back() == "-store") return findSubjects(PlazCommand::Subject::stores);
    return findSubjects(command->subject);
}

std::string quoted(const std::string& word) {
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    Tcl_IncrRefCount(list);
    Tcl_ListObjAppendElement(nullptr, list, Tcl_NewStringObj(word.data(), static_cast<int>(word.size())));
    std::string text = Tcl_GetString(list);
    Tcl_DecrRefCount(list);
    return text;
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
