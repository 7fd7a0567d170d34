#include "plaz/model/repo/git/HSCPlazGitWorkingCopy.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/repo/git/HSCPlazGitConfigFile.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitOwnership.h"
#include "plaz/model/repo/git/HSCPlazGitRemote.h"
#include "plaz/model/repo/git/HSCPlazGitRunner.h"
#include "plaz/model/repo/git/HSCPlazGitSettings.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"

#include <boost/algorithm/string/predicate.hpp>

using HSCPlazGitTrace::trace;
using Layout = HSCPlazStoreLayout;

namespace {

bool tellNotWritable(const std::string& dir, HSCPlazReport& report) {
    report.add(Msg::dirNotWritable, MsgSeverity::error, dir);
    return false;
}

// Leaves the staging directory's parent, without the staging directory.
bool clearStaging(const std::string& staging) {
    return HUTFile::mkDirRecursive(staging) && HUTFile::rmRecursive(staging);
}

// Removes what a killed git leaves: locks, which would make every later command fail, and half-received packs.
void tidyAfterCrash(const std::string& gitDir) {
    std::vector<std::string> leftovers;
    for (const std::string& name : HUTFile::listTree(gitDir, "objects"))
        if (boost::algorithm::ends_with(name, ".lock")) leftovers.push_back(gitDir + "/" + name);
    for (const std::string& name : HUTFile::createFileIter(gitDir + "/objects/pack"))
        if (boost::algorithm::starts_with(name, "tmp_")) leftovers.push_back(gitDir + "/objects/pack/" + name);
    for (const std::string& leftover : leftovers) HUTFile::rmRecursive(leftover);
}

void removeIndex(const std::string& index) {
    Layout::unmark(index);
    Layout::removeOrPutAside(index);
}

void discardForeignIndex(const std::string& index, const std::string& url) {
    trace("Checking cloned repo url matches with store url or not.");
    trace("Reconstructed git url :", url);
    const std::string recorded = HSCPlazGitConfigFile::getRemoteUrl(index);
    trace("Index remote url: ", recorded);
    trace("Store remote url: ", url);
    if (recorded == url) {
        trace("Cloned repo url matches with store url, no action required.");
        return;
    }
    trace("Cloned repo url doesn't match with store url, deleting cloned repo folder.");
    removeIndex(index);
}

/// Of the right URL, and completed at some time.
bool isUsable(const HSCPlazGitStore& store) {
    const std::string index = store.layout.getIndex();
    return Layout::isComplete(index) &&
           (!store.hasRemote() || HSCPlazGitConfigFile::getRemoteUrl(index) == store.access);
}

/// What somebody else may have had a hand in goes before git comes near it, where it can be made afresh.
bool discardOthers(const HSCPlazGitStore& store, HSCPlazReport& report) {
    const std::string index = store.layout.getIndex();
    const std::string objection = HSCPlazGitOwnership::findObjectionToOwn(index);
    if (objection.empty()) return true;
    if (store.hasRemote()) removeIndex(index);
    const bool isGone = !HUTFile::exists(index);
    if (isGone)
        report.add(Msg::workingCopyDiscarded, MsgSeverity::warning, index, objection);
    else
        report.add(Msg::workingCopyRefused, MsgSeverity::error, index, objection);
    return isGone;
}

// Each installation copies them and removes the copies again. git makes those that it needs.
void dropEmptyDirs(const std::string& gitDir) {
    for (const char* dir : {"/objects/info", "/refs/heads", "/refs/tags"})
        if (HUTFile::createFileIter(gitDir + dir).empty()) HUTFile::rmRecursive(gitDir + dir);
}

// Whatever an attempt that never came to its end has left is of no use.
bool createIndex(const HSCPlazGitStore& store, HSCPlazReport& report) {
    const std::string index = store.layout.getIndex();
    const std::string gitDir = index + "/" + Layout::gitDir;
    HUTFile::rmRecursive(gitDir);
    if (!HSCPlazGitSettings::initWorkingCopy(index)) return tellNotWritable(index, report);
    if (!HSCPlazGitRemote::set(index, store, report)) return false;
    dropEmptyDirs(gitDir);
    return Layout::markComplete(index);
}

bool fetchIndex(const HSCPlazGitStore& store, bool isRefreshed, HSCPlazReport& report) {
    const std::string index = store.layout.getIndex();
    discardForeignIndex(index, store.access);
    if (!HUTFile::mkDirRecursive(index)) return tellNotWritable(index, report);
    if (!Layout::isComplete(index)) return createIndex(store, report);
    trace("skipping clone... already cloned at: ", index);
    if (isRefreshed) HSCPlazGitSettings::renewProxy(index);
    const int result = HSCPlazGitRunner::run({"fetch"}, index);
    trace("cloneOrUpdateRepoForStore - git fetch, git return = ", std::to_string(result),
          ", final ret = ", std::to_string(result == 0));
    return result == 0;
}

// Files that git and the hub never write to where they stand: a new one is renamed over the old one.
bool isReplacedWhole(const std::string& relative) {
    for (const char* dir : {".git/objects/", ".git/refs/"})
        if (boost::algorithm::starts_with(relative, dir)) return true;
    for (const char* file : {".git/HEAD", ".git/config", ".git/packed-refs", ".git/info/attributes"})
        if (relative == file) return true;
    return false;
}

/// The repository alone: an index and files that somebody has left there are none of the commits'.
bool copyRepository(const std::string& index, const std::string& staging) {
    const auto isLinked = [](const std::string& relative) { return isReplacedWhole(".git/" + relative); };
    return HUTFile::mkDirForOwner(staging) && HUTFile::cloneTree(index, staging, isLinked) &&
           HUTFile::rmRecursive(staging + "/index");
}

bool copyIndex(const std::string& index, const std::string& staging, HSCPlazReport& report) {
    const std::string gitDir = std::string("/") + Layout::gitDir, marker = std::string("/") + Layout::doneMarker;
    if (copyRepository(index + gitDir, staging + gitDir) &&
        HUTFile::copyTo(index + marker, staging + marker, HUTFile::copyOver))
        return true;
    HUTFile::rmRecursive(staging);
    return tellNotWritable(staging, report);
}

} // namespace

bool HSCPlazGitWorkingCopy::stage(const HSCPlazGitStore& store, Use use, HSCPlazReport& report) {
    const std::string refusal = HSCPlazGitUrl::findRefusal(store.url);
    if (!refusal.empty() && (store.hasRemote() || use != Use::asItIs || !isUsable(store))) {
        report.add(Msg::storeRefused, MsgSeverity::error, store.model.getName(), refusal);
        return false;
    }
    if (const std::string link = store.layout.findWorkLink(); !link.empty()) {
        report.add(Msg::linkInPlace, MsgSeverity::error, link);
        return false;
    }
    if (!discardOthers(store, report)) return false;
    const bool isTaken = use == Use::asItIs && isUsable(store);
    const std::string staging = store.layout.getStaging();
    if (!clearStaging(staging)) return tellNotWritable(staging, report);
    const std::string index = store.layout.getIndex();
    trace("Temp Dir = ", staging);
    trace("Store Dir = ", index);
    trace("bInternet = ", std::to_string(use != Use::asItIs));

    tidyAfterCrash(index + "/" + Layout::gitDir);
    if (isTaken)
        trace("No need of git init/fetch.");
    else if (!fetchIndex(store, use == Use::refreshed, report))
        return false;
    return copyIndex(index, staging, report);
}

const std::vector<std::string>& HSCPlazGitWorkingCopy::integrityCheck() {
    static const std::vector<std::string> arguments{"fsck", "--connectivity-only", "--no-dangling", "--no-progress"};
    return arguments;
}

void HSCPlazGitWorkingCopy::discardDamaged(const HSCPlazWorkLayout& layout) {
    try {
        HSCPlazGitRunner::run(integrityCheck(), layout.getIndex(), true);
    } catch (const HSCPlazGitFailure& failure) {
        if (!HUTFork::isInterrupted() && !failure.hasMetLimit()) removeIndex(layout.getIndex());
    }
}
