#include "plaz/model/repo/git/HSCPlazGitClone.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/repo/git/HSCPlazGitCheckout.h"
#include "plaz/model/repo/git/HSCPlazGitConfigFile.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/model/repo/git/HSCPlazGitRemote.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/model/repo/git/HSCPlazGitSettings.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "support/HUTFork.h"

using HSCPlazGitTrace::trace;
using HSCPlazName::mainBranch;

namespace {

std::string withCredentials(const std::string& url, const HSCPlazCfgModel* config) {
    return HSCPlazGitCredentials::choose("", url, config).putInto(url);
}

void requireSafe(const std::string& dir, const std::string& url, const std::string& branch) {
    std::string reason = HSCPlazGitUrl::findRefusal(url);
    if (reason.empty() && !HSCPlazTrust::isSafeRef(branch))
        reason = "its branch \"" + branch + "\" is not the name of a branch";
    if (!reason.empty()) throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::storeRefused, dir, reason));
}

void requireDone(bool done, const std::string& dir) {
    if (!done) throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::dirNotWritable, dir));
}

// Nobody hears of the branch's failure: "master" has the last word.
void checkOutOrMaster(const std::string& dir, const std::string& branch) {
    trace("checkout release branch : ", branch);
    try {
        return HSCPlazGitCheckout::checkOut(dir, branch);
    } catch (const HEXAll&) {
        if (HUTFork::isInterrupted()) throw;
    }
    trace("checkout branch failed");
    trace("checkout master branch...");
    HSCPlazGitCheckout::checkOut(dir, mainBranch);
    trace("successfully checked out master branch.");
}

// RATIONALE: git merges what it pulls into the branch that is checked out, whichever that is. So another branch is
// fetched into, where it only ever moves forward, and the merge is one of those that change nothing. The one that is
// checked out would then be ahead of its files whenever these cannot follow, and the next pull find nothing to do.
void pull(const std::string& dir, const std::string& branch) {
    const std::string ref = "refs/heads/" + branch;
    HSCPlazGitCheckout::keepPlain(dir);
    if (HSCPlazGitHead::isAt(dir, branch))
        HSCPlazGitRunner::run({"pull", "--no-rebase", "--ff-only", "origin", ref}, dir);
    else
        HSCPlazGitRunner::run({"pull", "--no-rebase", "--squash", "--strategy=ours", "--allow-unrelated-histories",
                               "origin", ref + ":" + ref},
                              dir);
}

void makeClone(const std::string& access, const std::string& dir, const std::string& branch, const std::string& proxy) {
    HSCPlazGitRemoved gitDir(dir + "/" + HSCPlazStoreLayout::gitDir);
    requireDone(HUTFile::mkDirRecursive(dir) && HUTFile::rmRecursive(gitDir.getName()), dir);
    requireDone(HSCPlazGitSettings::initWorkingCopy(dir), dir);
    HSCPlazGitSettings::setProxy(dir, proxy);
    HSCPlazReport denied;
    if (!HSCPlazGitRemote::set(dir, dir, access, denied)) throw HEXAll(*denied.findProblem());
    checkOutOrMaster(dir, branch);
    requireDone(HSCPlazStoreLayout::markComplete(dir), dir);
    gitDir.keep();
}

} // namespace

bool HSCPlazGitClone::clone(const std::string& url, const std::string& dir, const std::string& branch,
                            const std::string& proxy, const HSCPlazCfgModel* config) {
    if (HSCPlazStoreLayout::isComplete(dir)) {
        trace("skipping clone... already cloned at: ", dir);
        return false;
    }
    const std::string wanted = branch.empty() ? mainBranch : branch;
    try {
        requireSafe(dir, url, wanted);
        makeClone(withCredentials(url, config), dir, wanted, proxy);
    } catch (const HEXAll&) {
        trace("Failed to clone repo at: ", dir);
        throw;
    }
    trace("cloned repo at: ", dir);
    return true;
}

void HSCPlazGitClone::update(const std::string& dir, const std::string& url, const std::string& branch,
                             const HSCPlazCfgModel* config) {
    const std::string wanted = branch.empty() ? mainBranch : branch;
    requireSafe(dir, url, wanted);
    trace("update repo at: ", dir);
    const std::string access = withCredentials(url, config);
    if (HSCPlazGitConfigFile::getRemoteUrl(dir) != access)
        HSCPlazGitRunner::runWithValue({"remote", "set-url", "origin"}, access, dir, false);
    pull(dir, wanted);
    checkOutOrMaster(dir, wanted);
}
