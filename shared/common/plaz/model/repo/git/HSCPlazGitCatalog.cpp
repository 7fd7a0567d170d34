#include "plaz/model/repo/git/HSCPlazGitCatalog.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazProduct.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/repo/git/HSCPlazGitCheckout.h"
#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/model/repo/git/HSCPlazGitRemote.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/model/repo/git/HSCPlazGitSettings.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "plaz/model/repo/git/HSCPlazGitWorkingCopy.h"

#include "support/HUTFork.h"

#include <boost/algorithm/string/join.hpp>

#include <algorithm>
#include <iterator>
#include <set>

using HSCPlazGitTrace::trace;
using HSCPlazName::mainBranch;
using Files = std::vector<std::string>;

namespace {

bool refuse(const std::string& owner, const std::string& reason, HSCPlazReport& report) {
    report.add(Msg::storeRefused, MsgSeverity::error, owner, reason);
    return false;
}

bool acceptBranch(const HSCPlazQStoreModel& store, HSCPlazReport& report) {
    const std::string branch = store.getBranchOrMaster();
    return HSCPlazTrust::isSafeRef(branch) ||
           refuse(store.getName(), "its branch \"" + branch + "\" is not the name of a branch", report);
}

bool acceptFiles(const std::string& owner, const Files& files, HSCPlazReport& report) {
    for (const std::string& file : files)
        if (!HSCPlazTrust::isSafeRelativePath(file))
            return refuse(owner, "its catalog file \"" + file + "\" does not lie in its repository", report);
    return true;
}

bool acceptItemFile(const std::string& store, const HSCPlazQItemModel& item, HSCPlazReport& report) {
    const std::string file = item.getRoot() + "/" + item.getMetadataFile();
    if (HSCPlazTrust::isSafeRelativePath(item.getRoot()) && HSCPlazTrust::isSafeRelativePath(file)) return true;
    const std::string reason = "its file \"" + file + "\" does not lie in the store's repository";
    report.appendOneOfMany({Msg::itemRefused, MsgSeverity::error, item.getName(), reason},
                           "items in the catalog of the store \"" + store + '"');
    return false;
}

Files getItemFiles(const HSCPlazQStoreModel& store, HSCPlazReport& report) {
    Files files;
    for (const auto& item : store.getItems()) {
        if (!item->isListed() && item->getMetadataFile().empty()) continue; // the catalog has left it out
        if (!acceptItemFile(store.getName(), *item, report)) continue;
        const std::string root = item->getRoot() + HUTFile::getDirSeparator();
        files.push_back(root + item->getMetadataFile());
        files.push_back(root + HSCPlazStoreLayout::changeLogFile);
    }
    return files;
}

bool requireRemoteAccess(HSCPlazReport& report) {
    if (HSCPlazGitParams::isRemoteAccessEnabled()) return true;
    report.add(Msg::remoteAccessOff, MsgSeverity::error);
    return false;
}

bool mayFetch(const Files& files, HSCPlazReport& report) {
    if (!requireRemoteAccess(report)) return false;
    if (files.empty()) trace("No catalog files provided to fetch.");
    return !files.empty();
}

// A refresh comes here for the catalog and again for what the items say of themselves; it is told once all the same.
void warnOnce(const std::string& owner, const std::string& staging, const std::string& wanted, bool isThere,
              HSCPlazReport& report) {
    static std::set<std::string> told;
    const std::string key = staging + '\n' + wanted;
    if (isThere)
        told.erase(key);
    else if (told.insert(key).second)
        report.add(Msg::branchReplaced, MsgSeverity::warning, owner, wanted);
}

bool tellNoBranch(const std::string& owner, const std::string& wanted, Files branches, HSCPlazReport& report) {
    static constexpr std::size_t shownBranches = 10;
    if (branches.empty()) {
        report.add(Msg::repositoryEmpty, MsgSeverity::error, owner);
        return false;
    }
    const bool isCut = branches.size() > shownBranches;
    if (isCut) branches.resize(shownBranches);
    const bool isMain = wanted.empty() || wanted == mainBranch;
    const std::string lacked = isMain ? "\"master\"" : '"' + wanted + "\" and no \"master\" either";
    const std::string names = boost::algorithm::join(branches, ", ") + (isCut ? ", ..." : "");
    report.add(Msg::branchMissing, MsgSeverity::error, owner, lacked, names);
    return false;
}

bool checkOutFiles(const std::string& owner, const std::string& staging, const Files& files, const std::string& wanted,
                   HSCPlazReport& report) {
    const std::string branch = HSCPlazGitHead::findBranch(staging, wanted);
    if (branch.empty()) return tellNoBranch(owner, wanted, HSCPlazGitHead::listBranches(staging), report);
    warnOnce(owner, staging, wanted, wanted.empty() || branch == wanted, report);
    HSCPlazGitCheckout::enableSparse(staging);
    if (!HSCPlazGitCheckout::writeSparseList(staging, files) || !HSCPlazGitHead::makeLocal(staging, branch)) {
        report.add(Msg::dirNotWritable, MsgSeverity::error, staging);
        return false;
    }
    HSCPlazGitCheckout::checkOut(staging, branch);
    return true;
}

// Looking takes long, so it is not done where it is the network that fails. URLs and paths are part of what git says.
bool maySpeakOfDamage(const HSCPlazGitFailure& failure) {
    static constexpr const char* signs[] = {"bad object",     "necessary objects",     "loose object", "packfile",
                                            "invalid sha1",   "unable to read",        "corrupt",      " checkout ",
                                            "not a git repo", "not in a git directory"};
    const auto& notes = failure.getDetails().getNotes();
    return std::any_of(notes.begin(), notes.end(), [](const HSCPlazReport::Note& note) {
        const std::string text = note.message.getMessage();
        return std::any_of(std::begin(signs), std::end(signs),
                           [&](const char* sign) { return text.find(sign) != std::string::npos; });
    });
}

bool stageFiles(const HSCPlazGitStore& store, const Files& files, HSCPlazReport& report) {
    const auto attempt = [&] {
        HSCPlazGitRemoved staging(store.layout.getStaging());
        if (!HSCPlazGitWorkingCopy::stage(store, HSCPlazGitWorkingCopy::Use::refreshed, report)) return false;
        if (!checkOutFiles(store.model.getName(), staging.getName(), files, store.model.getBranch(), report))
            return false;
        staging.keep();
        return true;
    };
    const bool wasComplete = HSCPlazStoreLayout::isComplete(store.layout.getIndex());
    try {
        return attempt();
    } catch (const HSCPlazGitFailure& failure) {
        if (!wasComplete || HUTFork::isInterrupted() || failure.hasMetLimit() || !maySpeakOfDamage(failure)) throw;
        HSCPlazGitWorkingCopy::discardDamaged(store.layout);
        if (HSCPlazStoreLayout::isComplete(store.layout.getIndex())) throw;
    }
    return attempt();
}

void traceStore(const HSCPlazGitStore& store) {
    if (!HSCPlazGitParams::isDebug()) return;
    const HSCPlazProduct::Identity product = HSCPlazProduct::get();
    trace("qstore local root dir", store.layout.getStaging());
    trace("store info.\n Store Path : ", store.layout.getStaging(), ".\n Store Remote : ", store.url,
          ".\n Store Branch : ", store.model.getBranchOrMaster());
    trace("Product Info :\n\t Product Name: ", product.name, ".\n\t Product Release : ", product.version);
}

/// Messages call the hub's own repository by the hub's root, for it has no other name.
bool acceptHub(const HSCPlazModel& hub, const Files& files, HSCPlazReport& report) {
    const std::string& root = hub.getRoot();
    if (hub.getRemoteRepository().empty()) {
        report.add(Msg::remoteRepoPathUnset, MsgSeverity::error, HSCPlazName::remoteRepoVariable,
                   HSCPlazName::remoteRepoVariable);
        return false;
    }
    const std::string refusal = HSCPlazGitUrl::findRefusal(hub.getRemoteRepository());
    if (!refusal.empty()) return refuse(root, refusal, report);
    if (!acceptFiles(root, files, report)) return false;
    return root.empty() || HSCPlazTrust::isSafeRelativePath(root) ||
           refuse(root, "its root \"" + root + "\" leads elsewhere", report);
}

} // namespace

HSCPlazGitOutcome HSCPlazGitCatalog::loadFiles(const HSCPlazGitStore& store, const Files& files) {
    return HSCPlazGitOutcome::of([&](HSCPlazReport& report) {
        if (!mayFetch(files, report)) return false;
        if (!acceptBranch(store.model, report) || !acceptFiles(store.model.getName(), files, report)) return false;
        trace("storePath = ", store.layout.getStaging());
        return stageFiles(store, files, report);
    });
}

HSCPlazGitOutcome HSCPlazGitCatalog::loadHubFiles(const HSCPlazModel& hub, const std::string& staging,
                                                  const Files& files, const HSCPlazCfgModel* config) {
    return HSCPlazGitOutcome::of([&](HSCPlazReport& report) {
        if (!mayFetch(files, report)) return false;
        if (!acceptHub(hub, files, report)) return false;
        trace("storePath = ", staging);
        const std::string& url = hub.getRemoteRepository();
        const HSCPlazGitCredentials credentials = HSCPlazGitCredentials::ofHub(config, url);
        HSCPlazGitRemoved removed(staging);
        if (!cloneHub(hub.getRoot(), staging, url, credentials, report)) return false;
        if (!checkOutFiles(hub.getRoot(), staging, files, "", report)) return false;
        removed.keep();
        return true;
    });
}

HSCPlazGitOutcome HSCPlazGitCatalog::loadItemFiles(const HSCPlazGitStore& store) {
    return HSCPlazGitOutcome::of([&](HSCPlazReport& report) {
        if (!requireRemoteAccess(report)) return false;
        if (!store.model.isProductSpecific()) {
            trace("it is not specific to product");
            return true;
        }
        if (!acceptBranch(store.model, report)) return false;
        const Files files = getItemFiles(store.model, report);
        if (files.empty()) {
            trace(" No qitems present in the store.");
            return true;
        }
        traceStore(store);
        return stageFiles(store, files, report);
    });
}

bool HSCPlazGitCatalog::cloneHub(const std::string& root, const std::string& staging, const std::string& url,
                                 const HSCPlazGitCredentials& credentials, HSCPlazReport& report) {
    static constexpr const char* self = "Inside cloneRepoForHub";
    const auto shown = [](const std::string& secret) { return secret.empty() ? std::string() : "***"; };
    trace(self);
    for (const std::string& detail : {root, staging, url, shown(credentials.userId), shown(credentials.token)})
        trace(self, " - ", detail);
    if (!HUTFile::rmRecursive(staging) || !HUTFile::mkDirRecursive(staging) ||
        !HSCPlazGitSettings::initWorkingCopy(staging)) {
        report.add(Msg::dirNotWritable, MsgSeverity::error, staging);
        return false;
    }
    return HSCPlazGitRemote::set(staging, root, credentials.putInto(url), report);
}
