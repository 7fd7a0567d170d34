#include "plaz/model/repo/HSCPlazGit.h"

#include "plaz/base/HSCPlazContext.h"
#include "plaz/base/HSCPlazHubLock.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/git/HSCPlazGitCatalog.h"
#include "plaz/model/repo/git/HSCPlazGitCheckout.h"
#include "plaz/model/repo/git/HSCPlazGitClone.h"
#include "plaz/model/repo/git/HSCPlazGitConfigFile.h"
#include "plaz/model/repo/git/HSCPlazGitInstall.h"
#include "plaz/model/repo/git/HSCPlazGitProgram.h"
#include "plaz/model/repo/git/HSCPlazGitRemote.h"
#include "plaz/model/repo/git/HSCPlazGitSettings.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "plaz/model/repo/git/HSCPlazGitUpdateCheck.h"
#include "plaz/model/repo/git/HSCPlazGitWorkingCopy.h"
#include "support/HUTFork.h"

namespace {

/// Sends what an operation has to tell, and throws what ended it.
bool deliver(const HSCPlazGitOutcome& outcome) {
    outcome.report.send();
    if (outcome.ends) throw HEXAll(*outcome.ends);
    return outcome.isDone;
}

/// Does what tells nothing of its own.
template <typename Work> void run(Work work) {
    deliver(HSCPlazGitOutcome::of([&](HSCPlazReport&) {
        work();
        return true;
    }));
}

HSCPlazGitStore inHub(const HSCPlazQStoreModel& store) {
    const HSCPlazContext& context = HSCPlazContext::get();
    return HSCPlazGitStore::of(store, context.getWorkLayout(store), context.getConfig());
}

} // namespace

HSCPlazGit::~HSCPlazGit() = default;

bool HSCPlazGit::install(HSCPlaz* hub, HSCPlazBaseModel* model) {
    const auto* item = dynamic_cast<const HSCPlazQItemModel*>(model);
    if (!hub || !item) return false;
    const HSCPlazQStore* owner = hub->getStore(item->getStoreName());
    if (!owner || !owner->getModel()) {
        deliver(HSCPlazGitInstall::check(*item));
        return false;
    }
    const HSCPlazQStoreModel& store = *owner->getModel();
    const HSCPlazContext& context = HSCPlazContext::get();
    return deliver(HSCPlazGitInstall::install(
        inHub(store), *item, {context.getItemDir(store, *item), context.getLayout(store).getIncoming()}));
}

bool HSCPlazGit::update(HSCPlazBaseModel*) {
    return true;
}

bool HSCPlazGit::uninstall(HSCPlazBaseModel*) {
    return true;
}

bool HSCPlazGit::updateCatalog(HSCPlazBaseModel* model) {
    const auto* store = dynamic_cast<const HSCPlazQStoreModel*>(model);
    return store && deliver(HSCPlazGitCatalog::loadItemFiles(inHub(*store)));
}

bool HSCPlazGit::loadCatalog(HSCPlazBaseModel* model, HSCPlazPathMgr* pathMgr,
                             const HSTVector<std::string>& catalogFiles) {
    if (!pathMgr) return false;
    const HSCPlazContext& context = HSCPlazContext::get();
    if (const auto* store = dynamic_cast<const HSCPlazQStoreModel*>(model))
        return deliver(HSCPlazGitCatalog::loadFiles(
            HSCPlazGitStore::of(*store, context.getWorkLayout(*pathMgr, *store), context.getConfig()), catalogFiles));
    const auto* hub = dynamic_cast<const HSCPlazModel*>(model);
    if (!hub) return false;
    // Nothing is made at a place to which a root leads that is refused.
    const bool isPlaced = hub->getRoot().empty() || HSCPlazTrust::isSafeRelativePath(hub->getRoot());
    const std::string staging = isPlaced ? context.getHubStagingDir(*pathMgr, hub->getRoot()) : std::string();
    return deliver(HSCPlazGitCatalog::loadHubFiles(*hub, staging, catalogFiles, context.getConfig()));
}

bool HSCPlazGit::isInstalled(const HSCPlazQStore* store) const {
    return store && HSCPlazStoreLayout::isComplete(store->getLocalRootDir());
}

int HSCPlazGit::cloneOrUpdateRepoForStore(const HSCPlazQStoreModel* store, bool bInternet) {
    using Use = HSCPlazGitWorkingCopy::Use;
    if (!store) return 0;
    const Use use = bInternet ? Use::refreshed : Use::asItIs;
    return deliver(HSCPlazGitOutcome::of(
               [&](HSCPlazReport& report) { return HSCPlazGitWorkingCopy::stage(inHub(*store), use, report); }))
               ? 1
               : 0;
}

bool HSCPlazGit::cloneRepoForHub(const std::string& root, const std::string& stagingDir, const std::string& url,
                                 const std::string& userId, const std::string& token) {
    return deliver(HSCPlazGitOutcome::of([&](HSCPlazReport& report) {
        return HSCPlazGitCatalog::cloneHub(root, stagingDir, url, {userId, token}, report);
    }));
}

void HSCPlazGit::cloneRepo(const std::string& url, const std::string& dir, const std::string& branch,
                           const std::string& proxy) {
    const bool isCloned = deliver(HSCPlazGitOutcome::of([&](HSCPlazReport&) {
        return HSCPlazGitClone::clone(url, dir, branch, proxy, HSCPlazContext::get().getConfig());
    }));
    if (!isCloned) return;
    ComMsgMgr::send(Msg::clonedRepo, MsgSeverity::info, dir);
    HSCPlazGitTrace::trace("successfully cloned repo at: ", dir);
}

void HSCPlazGit::updateRepo(const std::string& dir, const std::string& url, const std::string& branch) {
    run([&] { HSCPlazGitClone::update(dir, url, branch, HSCPlazContext::get().getConfig()); });
}

int HSCPlazGit::hasUpdate(const std::string& cloneDir, const std::string& url, const std::string& proxy,
                          const std::string& branch) {
    if (!HSCPlazStoreLayout::isComplete(cloneDir)) return 0;
    const HSCPlazContext& context = HSCPlazContext::get();
    const std::string access = HSCPlazGitStore::findAccess(url, context.getHub(), context.getConfig());
    const std::string lockFile = context.getLockFile();
    const auto taken =
        HSCPlazHubLock::take(lockFile, {HUTFork::isInterrupted, [](const HSCPlazReport& report) { report.send(); }});
    taken.problem.send();
    if (!taken.lock) return 0;
    // RATIONALE: as it always has, it goes by the first line of git's log alone, even where that tells of a failure.
    const HSCPlazUpdateCheck check = HSCPlazGitUpdateCheck::look(cloneDir, access, proxy, branch);
    check.details.send();
    return check.moved.value_or(false) ? 1 : 0;
}

void HSCPlazGit::setSslCaInfo(const std::string& dir) {
    HSCPlazGitSettings::setCertificates(dir);
}

void HSCPlazGit::setProxy(const std::string& dir) {
    HSCPlazGitSettings::setProxy(dir);
}

void HSCPlazGit::setProxy(const std::string& dir, const std::string& proxy) {
    HSCPlazGitSettings::setProxy(dir, proxy);
}

void HSCPlazGit::config_credential_helper(const std::string& dir) {
    HSCPlazGitSettings::setCredentialHelper(dir);
}

bool HSCPlazGit::checkAskPass(const std::string& dir, const HSCPlazQStoreModel* store) {
    return store && deliver(HSCPlazGitOutcome::of(
                        [&](HSCPlazReport& report) { return HSCPlazGitRemote::set(dir, inHub(*store), report); }));
}

bool HSCPlazGit::setRemote(const std::string& dir, const HSCPlazQStoreModel& store) {
    return deliver(HSCPlazGitOutcome::of([&](HSCPlazReport& report) {
        return HSCPlazGitRemote::set(dir, store.getName(), inHub(store).access, report);
    }));
}

std::string HSCPlazGit::getRemoteUrl(const std::string& dir) {
    return HSCPlazGitConfigFile::getRemoteUrl(dir);
}

void HSCPlazGit::enableSparseCheckout(const std::string& dir) {
    run([&] { HSCPlazGitCheckout::enableSparse(dir); });
}

bool HSCPlazGit::addItemsToSparseCheckout(const std::string& dir, const std::vector<std::string>& paths) {
    if (HSCPlazGitCheckout::writeSparseList(dir, paths)) return true;
    ComMsgMgr::send(Msg::dirNotWritable, MsgSeverity::error, dir);
    return false;
}

void HSCPlazGit::checkout(const std::string& dir, const std::string& ref) {
    run([&] { HSCPlazGitCheckout::checkOut(dir, ref); });
}

int HSCPlazGit::exec_git(const std::vector<std::string>& args, const std::string& workDir, bool internalCall,
                         const std::string& logFile) {
    run([&] { HSCPlazGitRunner::run(args, workDir, internalCall, logFile); });
    return 0;
}

int HSCPlazGit::exec_git_win(const std::string& cmdLine, const std::string& workDir, const std::string& outFile,
                             std::uint32_t& exitCode) {
    return HSCPlazGitRunner::runDirect(cmdLine, workDir, outFile, exitCode, 0);
}

void HSCPlazGit::setSslVerify(const std::string& workDir, const std::string& value) {
    run([&] { HSCPlazGitRunner::setSslVerify(workDir, value); });
}

std::string HSCPlazGit::getGitExePath() {
    return HSCPlazGitProgram::find();
}

int HSCPlazGit::getGitTimeOut() {
    return HSCPlazGitParams::getTimeOut();
}

bool HSCPlazGit::isDebugGit() {
    return HSCPlazGitParams::isDebug();
}

bool HSCPlazGit::isGitAccessEnabled() {
    return HSCPlazGitParams::isAccessEnabled();
}

bool HSCPlazGit::hasRemoteAccess() {
    if (HSCPlazGitParams::isRemoteAccessEnabled()) return true;
    ComMsgMgr::send(Msg::remoteAccessOff, MsgSeverity::error);
    return false;
}

void HSCPlazGit::debugTrace(const std::string& line) {
    HSCPlazGitTrace::trace(line);
}
