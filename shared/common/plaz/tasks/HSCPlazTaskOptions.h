#pragma once

#include <string>

class HSCPlazPlan;

/// A store that a user wants beside those of the hub.
struct HSCPlazNewStore {
    std::string name; ///< its folder is called so, too
    std::string url;
    std::string displayName;  ///< empty: the name
    std::string metadataFile; ///< in its repository; empty: looked for under the usual names
    std::string type;         ///< "board" for boards
};

/// How a task on an item goes about it.
struct HSCPlazTaskOptions {
    bool isQuiet = false;             ///< leaves out the good news
    bool areChangesDiscarded = false; ///< what the user has changed or added in items' folders is not kept
    bool isReinstallation = false;    ///< of an installation: fetches also what is there already
    /// What would be done goes there, and nothing is done. Null where it is to be done.
    HSCPlazPlan* plan = nullptr;
};
