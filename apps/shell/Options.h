#pragma once

#include "ItemQuery.h"
#include "WordCompletion.h"

#include "plaz/tasks/HSCPlazTaskOptions.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// What the command line asks for.
struct Options {
    std::string command; ///< name of the command, "hub set" for one of another; empty when help or version was asked
                         ///< for, or none could be read
    bool json = false;
    bool quiet = false;
    bool noProgress = false;
    std::string color = "auto"; ///< one of Colours::choices
    std::string product;
    std::string productVersion;
    std::vector<std::string> settings; ///< each "PARAM=VALUE"

    ItemQuery query;                ///< items; categories its store
    std::size_t limit = 0;          ///< items, history: most of them; 0 for any
    std::vector<std::string> items; ///< references, each well-formed
    std::string store;
    bool all = false;                 ///< update
    bool reinstall = false;           ///< install
    bool dryRun = false;              ///< install, uninstall, update, undo, refresh
    bool discardChanges = false;      ///< install, uninstall, update, repair
    bool allRevisions = false;        ///< uninstall
    bool oldRevisions = false;        ///< uninstall
    std::vector<std::string> stores;  ///< refresh, check, doctor: names; empty for all
    bool hub = false;                 ///< refresh
    int entry = 0;                    ///< undo: its number in the history; 0 for the newest
    std::string directory;            ///< relocate
    std::string pattern;              ///< params
    std::string param;                ///< set, unset
    std::optional<std::string> value; ///< set, hub set
    HSCPlazNewStore newStore;         ///< hub add-store
    bool hidden = false;              ///< params
    std::vector<std::string> files;   ///< validate
    std::vector<std::string> topic;   ///< help: a command's words; empty for all
    WordCompletion completion;        ///< complete: what may stand there
    std::vector<std::string> script;  ///< shell: a script and its arguments; empty for none
};

/// Exit status of the program.
namespace exitStatus {
inline constexpr int done = 0;
inline constexpr int failed = 1;
inline constexpr int wrongUsage = 2;
inline constexpr int cancelled = 130;
} // namespace exitStatus
