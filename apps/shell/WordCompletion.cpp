#include "WordCompletion.h"

#include "HubActions.h"

#include "support/HUTText.h"

#include <CLI/CLI.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/split.hpp>

#include <algorithm>
#include <map>
#include <set>

using boost::algorithm::starts_with;

namespace {

using Kind = WordCompletion::Kind;
using Word = WordCompletion::Word;

/// By what the help calls a value.
Kind kindOf(const std::string& value, const std::string& command) {
    static const std::map<std::string, Kind> kinds{{"STORE", Kind::store},         {"ITEM", Kind::item},
                                                   {"WORD", Kind::item},           {"CATEGORY", Kind::category},
                                                   {"PARAM", Kind::param},         {"PATTERN", Kind::param},
                                                   {"PARAM=VALUE", Kind::setting}, {"FILE", Kind::file},
                                                   {"DIRECTORY", Kind::directory}, {"NUMBER", Kind::entry}};
    static const std::set<std::string> ofInstalled{"uninstall", "update", "verify", "repair", "why", "hold"};
    if (value == "ITEM" && command == "install") return Kind::newItem;
    if (value == "ITEM" && command == "unhold") return Kind::heldItem;
    if (value == "ITEM" && ofInstalled.count(command) != 0) return Kind::installedItem;
    if (value == "STORE" && command == "remove-store") return Kind::ownStore;
    const auto found = kinds.find(value);
    return found == kinds.end() ? Kind::words : found->second;
}

std::vector<Word> commandsOf(const CLI::App& app) {
    std::vector<Word> words;
    for (const CLI::App* command : app.get_subcommands({}))
        if (!command->get_group().empty()) words.push_back({command->get_name(), command->get_description()});
    return words;
}

/// The line up to the word to complete.
class Line {
public:
    explicit Line(const CLI::App& program) : m_command(&program), m_topic(&program) {}

    void pass(const std::string& word) {
        if (m_asking) {
            m_asking = nullptr;
        } else if (isOption(word)) {
            const CLI::Option* option = findOption(word);
            if (option && takesValue(*option) && word.find('=') == std::string::npos) m_asking = option;
            m_isEnded = word == "--";
        } else if (const CLI::App* command = m_values == 0 ? findCommand(*m_command, word) : nullptr) {
            m_command = command;
        } else {
            ++m_values;
            if (m_topic) m_topic = findCommand(*m_topic, word);
        }
    }

    WordCompletion complete(const std::string& word) const {
        if (m_asking) return ofValue(m_asking->get_type_name(), "", word);
        if (isOption(word)) return ofOption(word);
        const std::vector<const CLI::Option*> values =
            m_command->get_options([](const CLI::Option* option) { return option->get_positional(); });
        if (m_values == 0 && !m_command->get_subcommands({}).empty())
            return {Kind::words, "", word, commandsOf(*m_command)};
        if (m_command->get_prefix_command()) return {Kind::file, "", word};
        const bool isTooMany =
            values.empty() || (m_values >= values.size() && values.back()->get_items_expected_max() == 1);
        return isTooMany ? WordCompletion{Kind::words, "", word}
                         : ofValue(values[std::min(m_values, values.size() - 1)]->get_name(true), "", word);
    }

private:
    bool isOption(const std::string& word) const { return !m_isEnded && starts_with(word, "-") && word != "-"; }

    static bool takesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

    /// Of the command, or of those that it belongs to.
    const CLI::Option* findOption(const std::string& word) const {
        for (const CLI::App* app = m_command; app; app = app->get_parent())
            if (const CLI::Option* option = app->get_option_no_throw(word.substr(0, word.find('=')))) return option;
        return nullptr;
    }

    WordCompletion ofOption(const std::string& word) const {
        const std::size_t equals = word.find('=');
        const CLI::Option* option = equals == std::string::npos ? nullptr : findOption(word);
        if (option) return ofValue(option->get_type_name(), word.substr(0, equals + 1), word.substr(equals + 1));
        std::vector<Word> words;
        for (const CLI::App* app = m_command; app; app = app->get_parent())
            for (const CLI::Option* known : app->get_options())
                for (const std::string& name : known->get_lnames())
                    words.push_back({"--" + name, known->get_description()});
        return {Kind::words, "", word, words};
    }

    /// @param value  what the help calls it; "A|B" where only these may stand there
    WordCompletion ofValue(const std::string& value, const std::string& before, const std::string& begun) const {
        WordCompletion completion{kindOf(value, m_command->get_name()), before, begun};
        std::vector<std::string> choices;
        if (value == "COMMAND" && m_topic) completion.words = commandsOf(*m_topic);
        if (value == "URL" && m_command->get_name() == "set")
            completion.words = {{HubActions::sampleHub, "The hub that comes with plaz"}};
        if (value.find('|') != std::string::npos)
            boost::algorithm::split(choices, value, [](char c) { return c == '|'; });
        for (const std::string& choice : choices) completion.words.push_back({choice, ""});
        return completion;
    }

    const CLI::App* m_command;
    const CLI::App* m_topic; ///< whose commands may stand where "help" asks for one; null where there are none
    const CLI::Option* m_asking = nullptr; ///< the option whose value comes next
    std::size_t m_values = 0;              ///< of the command, without those of options
    bool m_isEnded = false;                ///< no options come any more
};

} // namespace

const CLI::App* findCommand(const CLI::App& app, const std::string& name) {
    const std::vector<const CLI::App*> found =
        app.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
    return found.empty() ? nullptr : found.front();
}

WordCompletion WordCompletion::of(const CLI::App& program, const std::vector<std::string>& words) {
    Line line(program);
    for (std::size_t i = 1; i + 1 < words.size(); ++i) line.pass(words[i]);
    return line.complete(words.size() < 2 ? "" : words.back());
}

std::string WordCompletion::print() const {
    if (kind == Kind::file) return ":files";
    if (kind == Kind::directory) return ":directories";
    std::string text;
    for (const Word& word : words)
        if (starts_with(word.text, begun))
            text += (text.empty() ? "" : "\n") + before + HUTText::printable(word.text) + '\t' +
                    HUTText::printable(word.description);
    return text;
}
