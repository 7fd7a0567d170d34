#include "Suggestions.h"

#include "Nearness.h"

#include "support/HUTText.h"

#include <algorithm>
#include <vector>

namespace {

struct Synonym {
    const char* word;
    const char* meant;
};

constexpr Synonym synonyms[] = {{"search", "plaz items WORD..."},
                                {"find", "plaz items WORD..."},
                                {"list", "plaz items"},
                                {"ls", "plaz items"},
                                {"show", "plaz info ITEM"},
                                {"add", "plaz install ITEM..."},
                                {"get", "plaz install ITEM..."},
                                {"remove", "plaz uninstall ITEM..."},
                                {"rm", "plaz uninstall ITEM..."},
                                {"delete", "plaz uninstall ITEM..."},
                                {"upgrade", "plaz update"},
                                {"fetch", "plaz refresh"},
                                {"pull", "plaz refresh"},
                                {"sync", "plaz refresh"},
                                {"move", "plaz relocate STORE DIRECTORY"}};

std::string ask(const std::string& meant) {
    return ". Did you mean `" + meant + "`?";
}

/// The nearest of the names, in the form of a question.
std::string askForNearest(const std::string& word, const std::vector<std::string>& names) {
    const std::vector<std::string> near = findNearNames(word, names);
    return near.empty() ? std::string() : ask(near.front());
}

/// Those of a command and of the commands below it that were given.
void addOptions(const CLI::App& app, std::vector<std::string>& names) {
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    for (const CLI::App* command : app.get_subcommands()) addOptions(*command, names);
}

} // namespace

std::string Suggestions::ofCommand(const std::string& word, const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
    if (app.get_parent()) return askForNearest(word, names); // one of a command
    for (const Synonym& synonym : synonyms) names.emplace_back(synonym.word);
    const std::vector<std::string> near = findNearNames(word, names);
    if (near.empty()) return {};
    const auto isMeant = [&](const Synonym& synonym) { return near.front() == synonym.word; };
    const auto* const meant = std::find_if(std::begin(synonyms), std::end(synonyms), isMeant);
    return ask(meant == std::end(synonyms) ? near.front() : meant->meant);
}

std::string Suggestions::ofOption(const std::string& word, const CLI::App& app) {
    std::vector<std::string> names;
    addOptions(app, names);
    return askForNearest(word.substr(0, word.find('=')), names);
}
