#include "TclCommand.h"

#include "support/HUTText.h"

#include <algorithm>
#include <set>

std::vector<TclOption> tclOptions(std::initializer_list<CommandOption> options) {
    static std::set<std::string> names; // Tcl keeps pointers to them
    std::vector<TclOption> known;
    const auto add = [&](const CommandOption& option) {
        known.push_back({names.insert(tclNameOf(option)).first->c_str(), option});
    };
    for (const CommandOption& option : options) add(option);
    add(helpOption);
    known.push_back({nullptr, {}});
    return known;
}

std::string tclNameOf(const CommandOption& option) {
    std::string name = option.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return '-' + name;
}

std::string withValue(const TclOption& option) {
    return option.name + (option.about.value ? ' ' + HUTText::lowered(option.about.value) : std::string());
}

std::string usageOf(const TclCommand& command) {
    std::string usage;
    for (const TclOption* option = command.options.data(); option->name; ++option)
        if (option->name != tclNameOf(helpOption)) usage += '?' + withValue(*option) + "? ";
    usage += command.arguments;
    return usage.substr(0, usage.find_last_not_of(' ') + 1);
}
