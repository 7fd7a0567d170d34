#pragma once

#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazTypes.h"
#include "support/HSTFwdIter.h"
#include "support/HSTVector.h"

#include <string>

class HDGUIStatus;
class HSCPlazQItem;
class HSCPlazQStore;

/// What a graphical user interface calls: flat and static, on the thread that entered the hub first.
///
/// Whatever changes something runs as a command of the host's Tcl, so that a click is the same as the typed command;
/// the host registers the commands beforehand. A command that fails throws HEXAll HostMsg::tclFailed with the command's
/// error text. Names are put into commands as they are; one that Tcl would change on the way is refused before that
/// with HEXAll Msg::textNotForTcl, and nothing has changed then. Stores and items stay the hub's.
class PLAZ_API HSCPlazSwigIntf {
public:
    using HSCPlazException = HSCPlazTypes::HSCPlazException;

    /// The stores of the manager's hub.
    static const HSTVector<HSCPlazQStore*>& getStores();
    /// The store of exactly that name; null when there is none.
    static const HSCPlazQStore* getStore(const std::string& name);
    /// A new iterator over the items of a store, empty when there is no such store. The caller deletes it.
    static const HSTFwdIter<HSCPlazQItem*>* getItems(const std::string& storeName);

    /// Run the host's command on what the item's name means. A name that several stores have is accompanied by the
    /// item's store where HSCPlazHostCommands says that the commands take one; elsewhere it is refused with HEXAll
    /// Msg::nameInSeveralStores, and nothing has changed then.
    /// RATIONALE: status and exception are part of the interface but not used: failures are thrown.
    /// @param item  null gives false
    /// @return whether the command's result is not 0
    static bool install(HSCPlazQItem* item, HDGUIStatus& status, HSCPlazException& exception);
    static bool uninstall(HSCPlazQItem* item, HDGUIStatus& status, HSCPlazException& exception);
    static bool update(HSCPlazQItem* item, HDGUIStatus& status, HSCPlazException& exception);
    /// The same for a store; null, or one of another hub, gives false.
    static bool refreshCatalog(HSCPlazQStore* store, HDGUIStatus& status, HSCPlazException& exception);

    /// Whether the store's remote has moved. Where the remote gave no answer, and where something else goes wrong, that
    /// is written to @p exception, and the answer is false. That a store was never refreshed is no failure.
    static bool hasUpdate(HSCPlazQStore* store, HDGUIStatus& status, HSCPlazException& exception);
    /// These forward to HSCPlazTaskMgr.
    static bool isInstalled(HSCPlazQStore* store);
    static bool isRefreshed(HSCPlazQStore* store);
    static long getLastRefreshTime(HSCPlazQStore* store);
    /// Forwards to HSCPlazTaskMgr as well; @p exception is not touched.
    static bool setQStoreLocalRootDir(HSCPlazQStore* store, const std::string& dir, HSCPlazException& exception);

    /// Whether the store's URL answers a web client. False for null, for an empty URL, and for one that a shell would
    /// take for more than one word.
    static bool canAccessRepo(HSCPlazQStore* store);

    /// First entry of the preference "plaz.http_proxy"; empty when there is none.
    static std::string getHttpProxy();
    /// Sets the preference and saves it; in the main design tool sets the parameter "plaz.http_proxy" too.
    static void setHttpProxy(const std::string& proxy);
    /// First entry of the preference "QSTORES_PATH" that is not empty; else empty.
    static std::string getQStoresPath();
    /// Sets that preference by the host's command, with "/" between folders. @return whether the command's result is
    /// not 0
    static bool setQStoresPath(const std::string& path);
};
