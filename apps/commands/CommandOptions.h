#pragma once

/// An option of a command, however a front end spells it.
struct CommandOption {
    const char* name;        ///< words with "-" between them, none before the first
    const char* value;       ///< what stands behind it, in capitals; null for nothing
    const char* description; ///< one line of the help
};

/// The options that the program and the Tcl commands share. What only one of them takes stands with that one.
namespace commandOptions {
inline constexpr CommandOption quiet{"quiet", nullptr, "Leave out good news; errors and warnings are always shown"};
inline constexpr CommandOption store{"store", "STORE", "Look in this store only"};
inline constexpr CommandOption installed{"installed", nullptr, "Only what is installed"};
inline constexpr CommandOption outdated{"outdated", nullptr, "Only what is installed and has an update"};
inline constexpr CommandOption allRevisions{"all-revisions", nullptr, "Every revision instead of one for each item"};
inline constexpr CommandOption hub{"hub", nullptr,
                                   "Fetch the hub's own metadata first, and with it the catalogs of all stores"};
inline constexpr CommandOption reinstall{"reinstall", nullptr,
                                         "Fetch the items' files again, also where they are there"};
inline constexpr CommandOption discardChanges{
    "discard-changes", nullptr, "Do not keep what you have changed or added in the folders of items that go"};
inline constexpr CommandOption dryRun{"dry-run", nullptr, "Show what would be done, and do nothing"};
/// Of a refresh, which fetches for that.
inline constexpr CommandOption dryRefresh{"dry-run", nullptr,
                                          "Tell what would change; nothing that is installed or listed changes"};
inline constexpr CommandOption hidden{"hidden", nullptr, "List hidden parameters too"};
} // namespace commandOptions
