#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitEnv.h"
#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/model/repo/git/HSCPlazGitSilence.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"

using HSCPlazGitHead::mainBranch;

namespace {

std::string rebuildUrl(const std::string& url) {
    return HSCPlazGitUrl::withCredentials(url, HSCPlazGitCredentials::choose("", url));
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

// The failure of the branch is silent: "master" has the last word.
void checkOutOrMaster(const std::string& dir, const std::string& branch) {
    HSCPlazGit::debugTrace("checkout release branch : ", branch);
    try {
        const HSCPlazGitSilence silence;
        HSCPlazGit::checkout(dir, branch);
        return;
    } catch (const HEXAll&) {
        if (HUTFork::isInterrupted()) throw;
    }
    HSCPlazGit::debugTrace("checkout branch failed");
    HSCPlazGit::debugTrace("checkout master branch...");
    HSCPlazGit::checkout(dir, mainBranch);
    HSCPlazGit::debugTrace("successfully checked out master branch.");
}

void makeClone(const std::string& url, const std::string& dir, const std::string& branch, const std::string& proxy) {
    HSCPlazGitRemoved removed(dir + "/.git");
    requireDone(HUTFile::mkDirRecursive(dir) && HUTFile::rmRecursive(dir + "/.git"), dir);
    requireDone(HSCPlazGit::initWorkingCopy(dir), dir);
    HSCPlazGit::setProxy(dir, proxy);
    if (!HSCPlazGit::setRemote(dir, dir, rebuildUrl(url)))
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::gitFailed));
    checkOutOrMaster(dir, branch);
    requireDone(HUTFile::writeAtomically(dir + "/.done", ""), dir);
    removed.keep();
}

std::string shown(const std::string& secret) {
    return secret.empty() ? "" : "***";
}

} // namespace

bool HSCPlazGit::initWorkingCopy(const std::string& dir) {
    exec_git({"init"}, dir, false, "");
    if (!HUTFile::mkDirForOwner(dir + "/.git") || !HUTFile::mkDirRecursive(dir + "/.git/info") ||
        !HUTFile::writeAtomically(dir + "/.git/info/attributes", HSCPlazGitEnv::plainAttributes))
        return false;
    setSslCaInfo(dir);
    setProxy(dir);
    config_credential_helper(dir);
    return true;
}

void HSCPlazGit::cloneRepo(const std::string& url, const std::string& dir, const std::string& branch,
                           const std::string& proxy) {
    if (isInstalled(dir)) {
        debugTrace("skipping clone... already cloned at: ", dir);
        return;
    }
    const std::string wanted = branch.empty() ? mainBranch : branch;
    try {
        requireSafe(dir, url, wanted);
        makeClone(url, dir, wanted, proxy);
    } catch (const HEXAll&) {
        debugTrace("Failed to clone repo at: ", dir);
        throw;
    }
    debugTrace("cloned repo at: ", dir);
    ComMsgMgr::send(Msg::clonedRepo, MsgSeverity::info, dir);
    debugTrace("successfully cloned repo at: ", dir);
}

void HSCPlazGit::updateRepo(const std::string& dir, const std::string& url, const std::string& branch) {
    const std::string wanted = branch.empty() ? mainBranch : branch;
    requireSafe(dir, url, wanted);
    debugTrace("update repo at: ", dir);
    const std::string rebuilt = rebuildUrl(url);
    if (getRemoteUrl(dir) != rebuilt) execWithValue({"remote", "set-url", "origin"}, rebuilt, dir, false);
    exec_git({"pull", "--ff-only", "origin", wanted}, dir, false, "");
    checkOutOrMaster(dir, wanted);
}

bool HSCPlazGit::cloneRepoForHub(const std::string& root, const std::string& stagingDir, const std::string& url,
                                 const std::string& userId, const std::string& token) {
    static constexpr const char* self = "Inside cloneRepoForHub";
    debugTrace(self);
    for (const std::string& detail : {root, stagingDir, url, shown(userId), shown(token)})
        debugTrace(self, " - ", detail);
    if (!HUTFile::rmRecursive(stagingDir) || !HUTFile::mkDirRecursive(stagingDir) || !initWorkingCopy(stagingDir)) {
        ComMsgMgr::send(Msg::dirNotWritable, MsgSeverity::error, stagingDir);
        return false;
    }
    return setRemote(stagingDir, root, HSCPlazGitUrl::withCredentials(url, {userId, token}));
}
