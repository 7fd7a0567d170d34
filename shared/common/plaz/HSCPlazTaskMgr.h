#pragma once

#include "plaz/PlazExport.h"

class HDGUIStatus;
class HSCPlaz;
class HSCPlazQItem;

/// The operations that people ask for. Static only, on the caller's thread.
///
/// A task holds the hub's lock (HSCPlazPathMgr::getLockFile) while it works, so that of several processes one at a time
/// changes what is installed; it first takes over what the others have done and removes what interrupted tasks have
/// left. A task that is killed leaves the old state of each item or the new one; the same task, asked for again,
/// completes it. Sends Msg::hubBusy when another process does not come to an end.
class PLAZ_API HSCPlazTaskMgr {
public:
    /// Installs an item at its recorded commit, then what it depends on, and records both. An item that is there
    /// already gets what it lacks: dependencies that are missing, or the user's hold where other items brought it.
    ///
    /// @param hub     the hub that holds the item's store
    /// @param item    the item; null, or one without a model, gives false
    /// @param quiet   leaves out the good news; errors are always sent
    /// @param status  progress and cancellation; may be null
    /// @return false when the item or one of its direct dependencies could not be installed or recorded, or on
    ///         cancellation (nothing is sent then). What was installed before a failure stays installed.
    /// Sends Msg::itemAlreadyInstalled, itemInstalling, itemInstalled, itemInstallFailed, dependencyInstalled,
    /// dependencyInstallFailed, dependencyUnknown, databaseNotSaved and what the repository sends.
    static bool install(HSCPlaz* hub, HSCPlazQItem* item, bool quiet, HDGUIStatus* status);

    /// Removes an item's files, its metadata file excepted, unless something still needs them, and releases what it
    /// depends on.
    /// @return false for null arguments, for an item that is not installed (Msg::itemNotInstalled) or that other items
    ///         hold (Msg::itemHeld), and when files could not be removed (Msg::removalRefused, removalIncomplete) or
    ///         the result not be recorded (Msg::databaseNotSaved).
    /// Sends Msg::itemRemoved and Msg::dependencyRemoved unless @p quiet.
    static bool uninstall(HSCPlaz* hub, HSCPlazQItem* item, bool quiet);
};
