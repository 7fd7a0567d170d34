#include "plaz/model/repo/git/HSCPlazGitRemote.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "support/HUTFork.h"

using HSCPlazGitTrace::trace;

namespace {

// Runs one step of the set-up; its failure is noted in the trace before it goes on.
template <typename Step> int runStep(const char* failureText, Step step) {
    try {
        return step();
    } catch (const HEXAll&) {
        trace(failureText);
        throw;
    }
}

} // namespace

bool HSCPlazGitRemote::set(const std::string& dir, const std::string& name, const std::string& url,
                           HSCPlazReport& report) {
    static constexpr const char* remoteFailed = "Failed to set remote branch origin";
    trace("Inside setRemote method - setting remote for store - ", name);
    if (!HSCPlazGitParams::isAccessEnabled()) {
        trace(remoteFailed);
        report.add(Msg::gitAccessOff, MsgSeverity::error);
        return false;
    }
    const int added = runStep(remoteFailed, [&] {
        return HSCPlazGitRunner::runWithValue({"remote", "add", "origin"}, url, dir, false);
    });
    trace("setRemote - Remote added as origin, ret = ", std::to_string(added));
    const int fetched =
        runStep("Failed to fetch the repo contents.", [&] { return HSCPlazGitRunner::run({"fetch"}, dir); });
    trace("setRemote - Git fetch, ret = ", std::to_string(fetched));
    return true;
}

bool HSCPlazGitRemote::set(const std::string& dir, const HSCPlazGitStore& store, HSCPlazReport& report) {
    report.append(store.refusal);
    if (!HSCPlazGitParams::mayAsk() && store.model.isPrivateRepository() && !store.hasCredentials)
        report.add(Msg::credentialsMissing, MsgSeverity::warning, store.model.getName());
    return set(dir, store.model.getName(), store.access, report);
}

HSCPlazGitAnswer HSCPlazGitRemote::ask(const std::string& url, const std::string& access, const std::string& workDir) {
    const std::string refusal = HSCPlazGitUrl::findRefusal(url);
    if (!refusal.empty()) return {HUTFork::notStarted, "fatal: " + refusal};
    return HSCPlazGitRunner::ask({"ls-remote", "--heads", access}, workDir);
}
