#pragma once

#include "plaz/PlazExport.h"

class HDGUIStatus;
class HSCPlaz;
class HSCPlazQItem;

/// The operations that people ask for. Static only; one at a time, on the caller's thread.
class PLAZ_API HSCPlazTaskMgr {
public:
    /// Installs an item at its recorded commit, then what it depends on, and records both.
    ///
    /// @param hub     the hub that holds the item's store
    /// @param item    the item; null, or one without a model, gives false
    /// @param quiet   leaves out the good news; errors are always sent
    /// @param status  progress and cancellation; may be null
    /// @return false when the item or one of its direct dependencies could not be installed, or on cancellation
    ///         (nothing is sent then). What was installed before a failure stays installed.
    /// Sends Msg::itemAlreadyInstalled, itemInstalling, itemInstalled, itemInstallFailed, dependencyInstalled,
    /// dependencyInstallFailed and what the repository sends.
    static bool install(HSCPlaz* hub, HSCPlazQItem* item, bool quiet, HDGUIStatus* status);

    /// Removes an item's files unless something still needs them, and releases what it depends on.
    /// @return false for null arguments, for an item that other items hold (Msg::itemHeld) and when files could not be
    ///         removed. Sends Msg::itemRemoved and Msg::dependencyRemoved unless @p quiet.
    static bool uninstall(HSCPlaz* hub, HSCPlazQItem* item, bool quiet);
};
