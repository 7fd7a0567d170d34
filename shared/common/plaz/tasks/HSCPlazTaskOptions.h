#pragma once

/// How a task on an item goes about it.
struct HSCPlazTaskOptions {
    bool isQuiet = false;             ///< leaves out the good news
    bool areChangesDiscarded = false; ///< what the user has changed or added in items' folders is not kept
    bool isReinstallation = false;    ///< of an installation: fetches also what is there already
};
