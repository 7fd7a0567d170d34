#include "CommandLine.h"

#include "Colours.h"
#include "CommandOptions.h"
#include "ItemReference.h"
#include "ItemSearch.h"
#include "Suggestions.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <limits>
#include <map>

namespace {

constexpr const char* about = "Lists, installs and updates the items of the content hub's stores.";
constexpr const char* versionText = "plaz " PLAZ_VERSION;
constexpr const char* sharedNote = "The options of plaz itself (see plaz --help) may stand behind a command as well.";
constexpr const char* notes =
    R"(An ITEM is a name, with @REVISION behind it for one revision and STORE:: before it where
several stores have an item of that name: boards::clocking@1.0.

Exit status: 0 done, 1 the operation failed, 2 wrong usage, 130 cancelled (Ctrl-C).

Environment: GDA_APPROOT, GDA_DATA_DIR, GDA_TPS_DIR and GDA_APPDATA_DIR move the
directories that "plaz paths" lists.)";

std::string checkReference(const std::string& text) {
    return ItemReference::parse(text) ? std::string() : "\"" + text + "\" is no ITEM[@REVISION]";
}

/// Takes one of "A|B", as the help names what is expected.
CLI::Validator oneOf(const std::string& choices) {
    const auto check = [choices](const std::string& text) {
        const bool isOne = text.find('|') == std::string::npos &&
                           ("|" + choices + "|").find("|" + text + "|") != std::string::npos && !text.empty();
        return isOne ? std::string() : choices + " is expected";
    };
    return CLI::Validator(check, "");
}

// The value may be a secret: it is not repeated.
std::string checkSetting(const std::string& text) {
    const std::size_t separator = text.find('=');
    return separator == std::string::npos || separator == 0 ? "PARAM=VALUE is expected" : std::string();
}

std::string longNameOf(const CommandOption& option) {
    return std::string("--") + option.name;
}

void addFlag(CLI::App& command, const CommandOption& option, bool& isGiven) {
    command.add_flag(longNameOf(option), isGiven, option.description);
}

void addSharedOptions(CLI::App& app, Options& options) {
    app.add_option("--product", options.product, "Serve the stores as this product would see them")->type_name("NAME");
    app.add_option("--product-version", options.productVersion, "The product's version, such as 2024.2.0")
        ->type_name("V");
    app.add_option("--set", options.settings, "Set a parameter for this run; may be repeated (see plaz params)")
        ->type_name("PARAM=VALUE")
        ->allow_extra_args(false)
        ->check(checkSetting);
    app.add_flag("--json", options.json, "Print one JSON document on standard output, messages on standard error");
    addFlag(app, commandOptions::quiet, options.quiet);
    app.add_flag("--no-progress", options.noProgress, "Show no progress line");
    app.add_option("--color", options.color, "Colours on a terminal; auto leaves them out with NO_COLOR or TERM=dumb")
        ->type_name(Colours::choices)
        ->check(oneOf(Colours::choices));
}

void addStore(CLI::App& command, std::string& store) {
    const CommandOption& option = commandOptions::store;
    command.add_option(longNameOf(option), store, option.description)->type_name(option.value);
}

void addItems(CLI::App& command, Options& options, bool isRequired) {
    command.add_option("ITEM", options.items, "The items: [STORE::]NAME[@REVISION]")
        ->type_name("")
        ->required(isRequired)
        ->check(checkReference);
    addStore(command, options.store);
}

void addLimit(CLI::App& command, Options& options, const char* description) {
    command.add_option("--limit", options.limit, description)
        ->type_name("N")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()).description(""));
}

void addOrder(CLI::App& items, Options& options) {
    const auto setOrder = [&options](const std::string& name) { options.query.order = ItemQuery::orders().at(name); };
    items
        .add_option_function<std::string>("--sort", setOrder,
                                          "By relevance (what fits the words best first; unless another is named), "
                                          "name, store or revision (the highest first)")
        ->type_name(ItemQuery::orderNames())
        ->check(oneOf(ItemQuery::orderNames()));
    addLimit(items, options, "List no more than so many items");
}

void addItemsCommand(CLI::App& app, Options& options) {
    ItemQuery& query = options.query;
    CLI::App* items = app.add_subcommand("items", "List items: one line for each item, its latest revision");
    items
        ->add_option("WORD", query.terms,
                     "A name, or a pattern with * ? [a-z]; STORE::NAME to choose stores too. What is no name, and "
                     "several words, are looked for in what describes the items; typing errors are forgiven")
        ->type_name("");
    addStore(*items, query.store);
    items->add_option("--category", query.category, "Only items of this category and of those below it")
        ->type_name("CATEGORY");
    items
        ->add_option(
            "--search", query.words,
            "Only items that mention all these words in name, display name, description, keywords, categories or "
            "company")
        ->type_name("WORDS")
        ->allow_extra_args(false);
    addFlag(*items, commandOptions::installed, query.installed);
    addFlag(*items, commandOptions::outdated, query.outdated);
    addFlag(*items, commandOptions::allRevisions, query.allRevisions);
    addOrder(*items, options);
    items->footer(std::string("States: installed, dependency (only other items need it), outdated (an update is on "
                              "offer), held (see plaz hold), inactive (not for new designs any more).\n") +
                  sharedNote);
}

void addInstallCommands(CLI::App& app, Options& options) {
    CLI::App* install = app.add_subcommand("install", "Install items and what they need");
    addItems(*install, options, true);
    addFlag(*install, commandOptions::reinstall, options.reinstall);
    CLI::App* uninstall = app.add_subcommand("uninstall", "Remove items and what nothing else needs");
    addItems(*uninstall, options, true);
    CLI::Option* all =
        uninstall->add_flag("--all-revisions", options.allRevisions, "Every revision of an item that is installed");
    uninstall->add_flag("--old-revisions", options.oldRevisions, "Every one of them but the newest")->excludes(all);
    CLI::App* update = app.add_subcommand("update", "Bring installed items up to date");
    addItems(*update, options, false);
    update->add_flag("--all", options.all, "Update everything that is outdated");
    CLI::App* verify = app.add_subcommand("verify", "Compare installed files with those of the recorded commits");
    addItems(*verify, options, false);
    CLI::App* repair = app.add_subcommand("repair", "Bring back installed files that were changed or are missing");
    addItems(*repair, options, false);
    for (CLI::App* command : {install, uninstall, update}) addFlag(*command, commandOptions::dryRun, options.dryRun);
    for (CLI::App* command : {install, uninstall, update, repair})
        addFlag(*command, commandOptions::discardChanges, options.discardChanges);
    verify->footer(std::string("Without ITEM everything that is installed. Changes nothing and needs no network. "
                               "Outcomes: whole, damaged, unknown; the exit status is 1 where one is not whole. Files "
                               "that were added do no harm.\n") +
                   sharedNote);
    repair->footer(std::string("Without ITEM everything that is installed. A copy of what you had changed is kept, and "
                               "the message says where; files that you added stay.\n") +
                   sharedNote);
    update->footer(std::string("Where a store keeps several revisions, the older one stays beside the new one.\n") +
                   sharedNote);
}

void addQuestions(CLI::App& app, Options& options) {
    CLI::App* outdated = app.add_subcommand("outdated", "List what is installed and has an update");
    addStore(*outdated, options.query.store);
    CLI::App* why = app.add_subcommand("why", "Show who needs an installed item, or that you asked for it");
    CLI::App* whyNot = app.add_subcommand("why-not", "Show what keeps an item from being installed");
    for (CLI::App* command : {why, whyNot}) {
        addItems(*command, options, true);
        command->get_option("ITEM")->expected(1);
    }
    whyNot->footer(std::string("Nothing is fetched for that. The exit status is 0 where nothing keeps it, or it is "
                               "installed already.\n") +
                   sharedNote);
}

void addHoldCommands(CLI::App& app, Options& options) {
    CLI::App* hold = app.add_subcommand("hold", "Keep installed items in the revision that they are in");
    addItems(*hold, options, false);
    hold->footer(std::string("Without ITEM it lists what you hold. Updates pass over it, and installations that would "
                             "replace it, or bring a newer revision beside it, are refused, until you say plaz unhold. "
                             "Uninstalling ends it, too.\n") +
                 sharedNote);
    addItems(*app.add_subcommand("unhold", "Let items that you hold change again"), options, true);
}

void addHistoryCommands(CLI::App& app, Options& options) {
    CLI::App* history = app.add_subcommand("history", "List what was done to what is installed, the newest first");
    addLimit(*history, options, "List no more than so many commands");
    CLI::App* undo = app.add_subcommand("undo", "Take back what a command has changed of what is installed");
    undo->add_option("NUMBER", options.entry, "The command's number in the history; the newest without")
        ->type_name("")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()).description(""));
    addFlag(*undo, commandOptions::dryRun, options.dryRun);
    addFlag(*undo, commandOptions::discardChanges, options.discardChanges);
    undo->footer(
        std::string("The newest is one that was not taken back yet, so that twice goes two steps back. To take "
                    "back an undo, name its number.\n") +
        sharedNote);
}

void addHubCommand(CLI::App& app, Options& options) {
    CLI::App* hub = app.add_subcommand("hub", "Show which hub is in force, or choose one; keep stores of your own");
    CLI::App* set = hub->add_subcommand("set", "Use the hub of this URL from now on, and fetch it");
    set->add_option(
           "URL", options.value,
           "Where its repository is, or \"sample\" for the one that comes with plaz. Without it, it is asked for")
        ->type_name("");
    hub->add_subcommand("unset", "Use the installation's hub again");
    CLI::App* add = hub->add_subcommand("add-store", "Add a store of your own, and fetch its catalog");
    add->add_option("NAME", options.newStore.name, "What you call it")->type_name("")->required();
    add->add_option("URL", options.newStore.url, "Where its repository is")->type_name("")->required();
    add->add_option("--metadata-file", options.newStore.metadataFile,
                    "The store's metadata file in its repository; looked for under the usual names without")
        ->type_name("FILE");
    add->add_option("--display-name", options.newStore.displayName, "What people see; NAME without")->type_name("TEXT");
    add->add_option("--type", options.newStore.type, "What the store holds, such as board")->type_name("TYPE");
    CLI::App* remove = hub->add_subcommand("remove-store", "Take one of your own away; what is installed stays");
    remove->add_option("STORE", options.store, "The store")->type_name("")->required();
    hub->footer(
        std::string("Stores of your own stay when the hub changes. Where the hub has one of the same name, that "
                    "one is used.\n") +
        sharedNote);
}

void addCommands(CLI::App& app, Options& options) {
    app.footer(sharedNote); // commands start with their parent's
    app.add_subcommand("stores", "List the hub's stores");
    addItemsCommand(app, options);
    CLI::App* categories = app.add_subcommand("categories", "List the stores' categories");
    addStore(*categories, options.query.store);
    CLI::App* info = app.add_subcommand("info", "Show everything known of an item");
    addItems(*info, options, true);
    info->get_option("ITEM")->expected(1);
    addQuestions(app, options);
    addHubCommand(app, options);
    CLI::App* refresh = app.add_subcommand("refresh", "Fetch the stores' catalogs");
    CLI::App* check = app.add_subcommand("check", "Ask the stores' remotes for newer catalogs; fetch nothing");
    CLI::App* doctor = app.add_subcommand("doctor", "Look for what keeps stores from being fetched, and what to do");
    for (CLI::App* command : {refresh, check, doctor})
        command->add_option("STORE", options.stores, "The stores; all of them when none is named")->type_name("");
    addFlag(*refresh, commandOptions::hub, options.hub);
    addFlag(*refresh, commandOptions::dryRefresh, options.dryRun);
    refresh->footer(std::string("A catalog that does not come whole leaves the one known until now in force.\n") +
                    sharedNote);
    check->footer(std::string("Outcomes: up-to-date, outdated (refresh the store), unknown (the remote gave no answer; "
                              "the exit status is 1 then).\n") +
                  sharedNote);
    doctor->footer(std::string("Changes nothing. Remotes are asked, each for plaz.gitTimeout seconds at most. The exit "
                               "status is 1 when there is a problem; warnings alone leave it at 0.\n") +
                   sharedNote);
    addInstallCommands(app, options);
    addHoldCommands(app, options);
    addHistoryCommands(app, options);
    CLI::App* relocate = app.add_subcommand("relocate", "Keep a store below another directory from now on");
    relocate->add_option("STORE", options.store, "The store")->type_name("")->required();
    relocate->add_option("DIRECTORY", options.directory, "Where to keep it; its folder is made there")
        ->type_name("")
        ->required();
    CLI::App* help = app.add_subcommand("help", "Show the help of a command, or of plaz, and end");
    help->add_option("COMMAND", options.topic, "The command, such as install or hub set")->type_name("");
    app.add_subcommand("version", "Show the version and end");
    app.add_subcommand("paths", "Show every directory and file in force, and what chose it");
    CLI::App* params = app.add_subcommand("params", "List parameters with value, default and description");
    params->add_option("PATTERN", options.pattern, "Names to list: a pattern with * ? [a-z]")->type_name("");
    addFlag(*params, commandOptions::hidden, options.hidden);
    CLI::App* set = app.add_subcommand("set", "Keep the value of a parameter for you, from now on");
    CLI::App* unset = app.add_subcommand("unset", "Keep a parameter's value no longer");
    for (CLI::App* command : {set, unset})
        command->add_option("PARAM", options.param, "The parameter (see plaz params --hidden)")
            ->type_name("")
            ->required();
    set->add_option("VALUE", options.value,
                    "The value. Without it, it is asked for, or read from standard input, as it has to be with tokens, "
                    "user ids and passwords")
        ->type_name("");
    CLI::App* shell = app.add_subcommand("shell", "Run Tcl with the hub's commands: plaz shell [SCRIPT [ARG...]]");
    shell->prefix_command()->fallthrough(false); // what stands behind SCRIPT is the script's
    addSharedOptions(*shell, options);
    shell->footer(
        "Commands: plaz::get_qstores, plaz::get_qitems, plaz::install, plaz::uninstall, plaz::update, "
        "plaz::why, plaz::verify, plaz::repair, plaz::refresh_catalog, get_property, set_param and others; each takes "
        "-help. Without SCRIPT they are "
        "read from standard input.");
    // What the shells' scripts call.
    app.add_subcommand("complete", "Show what may stand in the place of the last of the words")
        ->prefix_command()
        ->fallthrough(false)
        ->group("");
    CLI::App* validate = app.add_subcommand("validate", "Check metadata files against their schemas");
    validate->add_option("FILE", options.files, "Hub, configuration, store, catalog, item or database files")
        ->type_name("")
        ->required();
}

/// Words of all "--search" texts.
std::vector<std::string> splitWords(const std::vector<std::string>& texts) {
    std::vector<std::string> words;
    for (const std::string& text : texts) addWords(text, words);
    return words;
}

/// "hub set" for a command of a command.
std::string nameOf(const CLI::App& command) {
    const std::vector<CLI::App*> given = command.get_subcommands();
    return command.get_name() + (given.empty() ? "" : " " + given.front()->get_name());
}

std::string trimmedEnd(std::string text) {
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

std::string describe(const CLI::ParseError& error, const CLI::App& app) {
    const std::vector<std::string> rest = app.remaining(true);
    const auto isOption = [](const std::string& word) { return word.rfind("--", 0) == 0; };
    if (const auto option = std::find_if(rest.begin(), rest.end(), isOption); option != rest.end())
        return "there is no option \"" + *option + "\"" + Suggestions::ofOption(*option, app);
    const CLI::App* command = app.get_subcommands().empty() ? nullptr : app.get_subcommands().front();
    if (command && !rest.empty() && !command->get_subcommands({}).empty())
        return "there is no command \"" + command->get_name() + " " + rest.front() + "\"" +
               Suggestions::ofCommand(rest.front(), *command);
    if (command || dynamic_cast<const CLI::RequiredError*>(&error) == nullptr) return error.what();
    if (rest.empty()) return "a command is required";
    return "there is no command \"" + rest.front() + "\"" + Suggestions::ofCommand(rest.front(), app);
}

/// A line that could not be read to its end still tells how the answer is wanted.
bool asksForJson(const std::vector<std::string>& args) {
    return std::find(args.begin(), args.end(), "--json") != args.end();
}

void checkUpdate(const Options& options) {
    if (options.all && !options.items.empty()) throw CLI::ValidationError("update", "either items or --all, not both");
    if (options.all && !options.store.empty())
        throw CLI::ValidationError("update", "--store goes with items, not with --all");
    if (!options.all && options.items.empty()) throw CLI::ValidationError("update", "name items, or say --all");
}

void checkUninstall(const Options& options) {
    const auto namesRevision = [](const std::string& item) { return !ItemReference::parse(item)->revision.empty(); };
    if ((options.allRevisions || options.oldRevisions) &&
        std::any_of(options.items.begin(), options.items.end(), namesRevision))
        throw CLI::ValidationError("uninstall", "--all-revisions and --old-revisions go with names without @REVISION");
}

/// "plaz help [COMMAND]" and "plaz version" are the options of that name.
void turnIntoOption(const CLI::App& app, const Options& options) {
    if (options.command == "version") throw CLI::CallForVersion(versionText, CLI::ExitCodes::Success);
    if (options.command != "help") return;
    const CLI::App* command = &app;
    std::string name;
    for (const std::string& word : options.topic) {
        const CLI::App* next = findCommand(*command, word);
        name += (name.empty() ? "" : " ") + word;
        if (!next)
            throw CLI::ValidationError("help",
                                       "there is no command \"" + name + "\"" + Suggestions::ofCommand(word, *command));
        command = next;
    }
    throw CLI::CallForHelp();
}

/// Of the command that was chosen, or that "help" names, or else of the program.
std::string helpOf(const CLI::App& app, const Options& options) {
    if (!options.topic.empty()) {
        const CLI::App* command = &app;
        std::string parents;
        for (const std::string& word : options.topic) {
            parents += (parents.empty() ? "" : " ") + command->get_name();
            command = findCommand(*command, word);
        }
        return command->help(parents);
    }
    const bool isOfAll = app.get_subcommands().empty() || options.command == "help";
    return isOfAll ? app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal) : app.help();
}

std::vector<std::string> readScript(const Options& options, const std::vector<std::string>& words) {
    if (options.json) throw CLI::ValidationError("shell", "--json does not go with it: scripts print what they want");
    if (!words.empty() && words.front().rfind('-', 0) == 0) throw CLI::ExtrasError({words.front()});
    return words;
}

} // namespace

CommandLine CommandLine::parse(const std::vector<std::string>& args) {
    CommandLine line{Kind::command, {}, {}};
    Options& options = line.options;
    CLI::App app(about, "plaz");
    app.set_version_flag("--version", versionText, "Show the version and end");
    app.set_help_flag("-h,--help", "Show this help, or that of a command, and end");
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // what begins with "/" may be a path
    app.fallthrough();
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.get_formatter()->label("Subcommands", "Commands");
    addSharedOptions(app, options);
    addCommands(app, options);
    app.footer(notes);
    try {
        app.parse(std::vector<std::string>(args.rbegin(), std::prev(args.rend()))); // taken from the end
        options.command = nameOf(*app.get_subcommands().front());
        turnIntoOption(app, options);
        options.query.words = splitWords(options.query.words);
        if (options.command == "update") checkUpdate(options);
        if (options.command == "uninstall") checkUninstall(options);
        if (options.command == "complete")
            options.completion = WordCompletion::of(app, app.get_subcommands().front()->remaining());
        if (options.command == "shell")
            options.script = readScript(options, app.get_subcommands().front()->remaining());
        return line;
    } catch (const CLI::CallForHelp&) {
        line.kind = Kind::help;
        line.text = trimmedEnd(helpOf(app, options));
    } catch (const CLI::CallForVersion& version) {
        line.kind = Kind::version;
        line.text = version.what();
    } catch (const CLI::ParseError& error) {
        line.kind = Kind::wrong;
        line.text = describe(error, app);
    }
    const bool isMisused = line.kind == Kind::wrong && !app.get_subcommands().empty();
    options.command = isMisused ? nameOf(*app.get_subcommands().front()) : "";
    options.json = asksForJson(args);
    return line;
}
