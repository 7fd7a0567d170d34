#include "plaz/model/repo/git/HSCPlazGitLimits.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/HSCPlazUrl.h"
#include "plaz/model/repo/git/HSCPlazGitEnv.h"
#include "plaz/model/repo/git/HSCPlazGitLog.h"
#include "plaz/model/repo/git/HSCPlazGitPace.h"
#include "plaz/model/repo/git/HSCPlazGitParams.h"
#include "support/HUTFork.h"

void HSCPlazGitLimits::apply(HUTFork& git, const std::string& command, const std::string& workDir, int seconds) {
    git.setTimeout(seconds);
    git.setMemoryLimit(HSCPlazGitParams::getMemoryLimit(), HSCPlazGitLog::tellsOfMemory);
    git.setLogLimit(HSCPlazGitParams::getLogLimit());
    const int slowTime = HSCPlazGitParams::getSlowTime();
    if (slowTime <= 0 || !HSCPlazGitEnv::mayTransfer(command)) return;
    git.setWatch([gitDir = workDir + "/" + HSCPlazStoreLayout::gitDir, slowTime] {
        return [pace = HSCPlazGitPace(gitDir, slowTime)](const auto& isBusy) mutable { return pace.mayGoOn(isBusy); };
    });
}

HSCPlazReport HSCPlazGitLimits::explain(const HUTFork& git, const std::string& command, const std::string& remoteUrl,
                                        const std::string& workDir) {
    const auto tell = [&](const MsgId<3>& id, int limit) {
        const std::string subject = remoteUrl.empty() ? workDir : HSCPlazUrl::parse(remoteUrl).withoutUser();
        return HSCPlazReport(id, MsgSeverity::error, command, subject, std::to_string(limit));
    };
    switch (git.getLimitMet()) {
    case HUTFork::Limit::none:
        break;
    case HUTFork::Limit::time:
        return tell(Msg::gitTimeLimit, HSCPlazGitParams::getTimeOut());
    case HUTFork::Limit::memory:
        return tell(Msg::gitMemoryLimit, HSCPlazGitParams::getMemoryLimit());
    case HUTFork::Limit::log:
        return tell(Msg::gitLogLimit, HSCPlazGitParams::getLogLimit());
    case HUTFork::Limit::watch:
        return tell(Msg::gitPaceLimit, HSCPlazGitParams::getSlowTime());
    }
    return {};
}
