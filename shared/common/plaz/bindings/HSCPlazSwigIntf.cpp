#include "plaz/bindings/HSCPlazSwigIntf.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/base/HSCPlazUrl.h"
#include "plaz/bindings/HSCPlazHostCommands.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/git/HSCPlazGitProxies.h"
#include "scripting/task_manager.h"
#include "support/HCCXPrefMgr.h"
#include "support/HUTSysCall.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

HSCPlaz& hub() {
    return HSCPlazMgr::getInstance().getHub();
}

HCCXPref& preferences() {
    return HCCXPrefMgr::getInstance().getDefaultXPref();
}

/// @param refusal  why the text is not taken; empty where it is
/// @param shown    the text as a person may see it
void requirePlain(const std::string& refusal, const std::string& shown) {
    if (refusal.empty()) return;
    throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::textNotForTcl, shown, refusal));
}

bool evaluate(const std::string& command) {
    return hdi::tcltasks::task_manager::eval_in_tcl_throw(command, nullptr, false) != 0;
}

/// A name as it is put into a command.
const std::string& requirePlainName(const std::string& name) {
    requirePlain(HSCPlazTrust::findTclNameRefusal(name), name);
    return name;
}

bool holds(const HSCPlazQStore& store, const std::string& name) {
    const auto& items = store.getItems();
    return std::any_of(items.begin(), items.end(), [&](const HSCPlazQItem* item) {
        return item->getItemName() == name || item->getName() == name;
    });
}

/// The stores in which a name means an item, in the hub's order.
std::vector<std::string> storesThatHold(const std::string& name) {
    std::vector<std::string> names;
    for (const HSCPlazQStore* store : hub().getStores())
        if (holds(*store, name)) names.push_back(store->getName());
    return names;
}

/// What says, in a command that goes by an item's name, of which store the item is: nothing where the name says it.
/// @throws HEXAll Msg::nameInSeveralStores where the host's commands have no word for it
std::string storeOption(const HSCPlazQItem& item) {
    const std::string name = item.getItemName();
    const std::vector<std::string> stores = storesThatHold(name);
    if (stores.size() < 2) return {};
    if (item.getStore() && HSCPlazHostCommands::takeStore())
        return "-store {" + requirePlainName(item.getStore()->getName()) + "} ";
    std::string candidates;
    for (const std::string& store : stores) candidates += (candidates.empty() ? "" : ", ") + store + "::" + name;
    throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::nameInSeveralStores, name, candidates));
}

bool evaluateOn(const std::string& command, const HSCPlazQItem* item) {
    if (!item) return false;
    const std::string name = requirePlainName(item->getItemName());
    return evaluate(command + " [plaz::get_qitems " + storeOption(*item) + name + "]");
}

} // namespace

const HSTVector<HSCPlazQStore*>& HSCPlazSwigIntf::getStores() {
    const HSTVector<HSCPlazQStore*>& stores = hub().getStores();
    HSCPlazDebugLog::inside("HSCPlazSwigIntf::getStores", " no. of stores - ", std::to_string(stores.size()));
    return stores;
}

const HSCPlazQStore* HSCPlazSwigIntf::getStore(const std::string& name) {
    return hub().getStore(name);
}

const HSTFwdIter<HSCPlazQItem*>* HSCPlazSwigIntf::getItems(const std::string& storeName) {
    const HSCPlazQStore* store = getStore(storeName);
    return std::make_unique<HSTFwdIter<HSCPlazQItem*>>(store ? store->getItems() : HSTVector<HSCPlazQItem*>())
        .release();
}

bool HSCPlazSwigIntf::install(HSCPlazQItem* item, HDGUIStatus& /*status*/, HSCPlazException& /*exception*/) {
    return evaluateOn("plaz::install", item);
}

bool HSCPlazSwigIntf::uninstall(HSCPlazQItem* item, HDGUIStatus& /*status*/, HSCPlazException& /*exception*/) {
    return evaluateOn("plaz::uninstall", item);
}

bool HSCPlazSwigIntf::update(HSCPlazQItem* item, HDGUIStatus& /*status*/, HSCPlazException& /*exception*/) {
    return evaluateOn("plaz::update", item);
}

bool HSCPlazSwigIntf::refreshCatalog(HSCPlazQStore* store, HDGUIStatus& /*status*/, HSCPlazException& /*exception*/) {
    if (!store || store->getHub() != &hub()) return false;
    return evaluate("plaz::refresh_catalog [plaz::get_qstores " + requirePlainName(store->getName()) + "]");
}

bool HSCPlazSwigIntf::hasUpdate(HSCPlazQStore* store, HDGUIStatus& /*status*/, HSCPlazException& exception) {
    const std::string proxy = getHttpProxy();
    try {
        const HSCPlazUpdateCheck check = HSCPlazTaskMgr::askRemote(store, proxy);
        if (!check.hasFailed()) return check.moved.value_or(false);
    } catch (...) { // told like any other failure
    }
    exception.error_msg = "Error: checking for updates failed" +
                          (store ? " for store " + store->getDisplayName() : std::string()) +
                          ", could be due to timeout or proxy settings.\n Current proxy setting: " +
                          (proxy.empty() ? "null" : HSCPlazTrust::maskProxy(proxy)) + ".\n";
    return false;
}

bool HSCPlazSwigIntf::isInstalled(HSCPlazQStore* store) {
    return HSCPlazTaskMgr::isInstalled(store);
}

bool HSCPlazSwigIntf::isRefreshed(HSCPlazQStore* store) {
    return HSCPlazTaskMgr::isRefreshed(store);
}

long HSCPlazSwigIntf::getLastRefreshTime(HSCPlazQStore* store) {
    return HSCPlazTaskMgr::getLastRefreshTime(store);
}

bool HSCPlazSwigIntf::setQStoreLocalRootDir(HSCPlazQStore* store, const std::string& dir,
                                            HSCPlazException& /*exception*/) {
    return HSCPlazTaskMgr::setQStoreLocalRootDir(store, dir);
}

bool HSCPlazSwigIntf::canAccessRepo(HSCPlazQStore* store) {
    const std::string url = store ? HSCPlazUrl::parse(store->getUrl()).withoutUser() : "";
    return HUTSysCall::isPlainShellWord(url) && HSCPlazTrust::isSafeUrl(url) &&
           HUTSysCall::runShell("wget --spider -q " + url) == 0; // one harmless word
}

std::string HSCPlazSwigIntf::getHttpProxy() {
    return HSCPlazGitProxies::getPreferred();
}

void HSCPlazSwigIntf::setHttpProxy(const std::string& proxy) {
    const bool isParameter = HSCPlazProduct::getProxySource() == HSCPlazProduct::ProxySource::parameters;
    if (isParameter) requirePlain(HSCPlazTrust::findTclRefusal(proxy), HSCPlazTrust::maskProxy(proxy));
    preferences().setVal(HSCPlazName::httpProxy, {proxy});
    HCCXPrefUtils::savePreferences();
    if (!isParameter) return;
    std::string anyResult; // what a host's command gives is the host's own
    hdi::tcltasks::task_manager::eval_in_tcl_throw(std::string("set_param ") + HSCPlazName::httpProxy + " " + proxy,
                                                   &anyResult, false);
}

std::string HSCPlazSwigIntf::getQStoresPath() {
    const std::vector<std::string> paths = preferences().getVal(HSCPlazName::storesPath);
    const auto found = std::find_if(paths.begin(), paths.end(), [](const std::string& path) { return !path.empty(); });
    return found == paths.end() ? std::string() : *found;
}

bool HSCPlazSwigIntf::setQStoresPath(const std::string& path) {
    // Of the separators that a system knows, dialogs may give the one that Tcl would interpret.
    const std::string plain = boost::filesystem::path(path).generic_string();
    requirePlain(HSCPlazTrust::findTclRefusal(plain), plain);
    return evaluate(std::string("set_property ") + HSCPlazName::storesPath + " " + plain +
                    " [current_solvan_preferences]");
}
