#include "plaz/HSCPlazMgr.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "support/HIOStream.h"
#include "support/HUTFork.h"

#include <optional>
#include <sstream>

using HSCPlazGitHead::mainBranch;

namespace {

constexpr std::size_t comparedLength = 7;

// The caller gives a URL alone; which store it belongs to decides on the credentials and on the URL that is asked.
std::string rebuildUrl(const std::string& url) {
    for (const HSCPlazQStore* store : HSCPlazMgr::getInstance().getHub().getStores())
        if (store->getModel() && store->getUrl() == url)
            return HSCPlazGitUrl::ofStoreWithCredentials(*store->getModel());
    return HSCPlazGitUrl::withCredentials(url, HSCPlazGitCredentials::choose("", url));
}

// A double quote cannot be part of an argument there, so it could end one early.
bool fitsCommandLine(const std::string& url) {
    return HSCPlazTrust::isSafeUrl(url) && url.find('"') == std::string::npos;
}

/// @return the exit status
std::uint32_t run(const std::string& arguments, const std::string& dir, const std::string& output) {
    std::uint32_t exitCode = 0;
    // RATIONALE: the program stands unquoted, as it always has; the runner finds its end.
    if (HSCPlazGit::exec_git_win(HSCPlazGit::getGitExePath() + arguments, dir, output, exitCode,
                                 HSCPlazGit::getGitTimeOut()) == 0)
        return exitCode;
    HSCPlazGit::debugTrace("Error : exec_git_win");
    return HUTFork::notStarted;
}

std::string readText(const std::string& file) {
    std::string text;
    HIOStream::read(file, text);
    return text;
}

/// Whether the first head that the branch names differs from the local one; nothing when no line names the branch.
std::optional<bool> compare(const std::string& localLine, const std::string& heads, const std::string& branch) {
    const std::string target = "refs/heads/" + branch;
    std::istringstream lines(heads);
    for (std::string line; std::getline(lines, line);) {
        HSCPlazGit::debugTrace("ls-remote = ", line);
        if (line.find(target) != std::string::npos)
            return localLine.substr(0, comparedLength) != line.substr(0, comparedLength);
    }
    return std::nullopt;
}

/// Nothing where neither the branch nor the one in its stead is there, or git's log is empty.
std::optional<bool> isMoved(const std::string& log, const std::string& heads, const std::string& branch) {
    const std::string localLine = log.substr(0, log.find('\n'));
    HSCPlazGit::debugTrace("log = ", localLine);
    if (localLine.empty()) return std::nullopt;
    std::optional<bool> moved = compare(localLine, heads, branch);
    if (!moved && branch == mainBranch)
        HSCPlazGit::debugTrace("Already checked for ", mainBranch, ", so breaking the loop");
    else if (!moved)
        moved = compare(localLine, heads, mainBranch);
    return moved;
}

/// What the two outputs say, and why that is not to be relied on, if it is not.
HSCPlazGit::UpdateCheck askAndCompare(const std::string& cloneDir, const std::string& url, const std::string& branch,
                                      const std::string& logFile, const std::string& headsFile) {
    run(" log --oneline -n 1", cloneDir, logFile);
    const std::uint32_t status = run(
        url.find(' ') == std::string::npos ? " ls-remote " + url : " ls-remote \"" + url + "\"", cloneDir, headsFile);
    const std::string log = readText(logFile);
    const std::string heads = readText(headsFile);
    HSCPlazGit::UpdateCheck check{isMoved(log, heads, branch), {}};
    HSCPlazGit::debugTrace(url, " ", branch, check.moved.value_or(false) ? " has updates!" : " has no updates!");
    if (status != 0)
        check.reason = HSCPlazGit::Answer{static_cast<int>(status), HSCPlazTrust::maskSecrets(heads)}.getReason();
    else if (log.empty())
        check.reason = "the working copy \"" + cloneDir + "\" holds no commit";
    else if (!check.moved)
        check.reason = "the remote has no branch \"" + branch + "\"";
    return check;
}

/// Where none is named: the one that is followed.
std::string branchToCheck(const std::string& cloneDir, const std::string& branch) {
    if (!branch.empty()) return branch;
    const std::string followed = HSCPlazGitHead::findBranch(cloneDir, "");
    return followed.empty() ? mainBranch : followed;
}

HSCPlazGit::UpdateCheck lookAt(const std::string& cloneDir, const std::string& url, const std::string& proxy,
                               const std::string& branch) {
    const std::string logFile = cloneDir + "/__git1.log";
    const std::string headsFile = cloneDir + "/__git2.log";
    const std::string rebuilt = rebuildUrl(url);
    if (!HSCPlazGit::isInstalled(cloneDir))
        return {std::nullopt, "the working copy \"" + cloneDir + "\" is not complete"};
    if (!fitsCommandLine(rebuilt)) return {std::nullopt, "its URL is not safe to give to git"};
    HSCPlazGit::UpdateCheck check{std::nullopt, "another program is at work on the hub"};
    try {
        HSCPlazTask::withLock(nullptr, [&] {
            HSCPlazGit::setProxy(cloneDir, proxy);
            const HSCPlazGitRemoved logRemoved(logFile);
            const HSCPlazGitRemoved headsRemoved(headsFile);
            check = askAndCompare(cloneDir, rebuilt, branchToCheck(cloneDir, branch), logFile, headsFile);
            return true;
        });
    } catch (const std::exception& failure) {
        HSCPlazGit::debugTrace("Error while fetching log data from git repo ", rebuilt);
        check.reason = failure.what();
    }
    return check;
}

} // namespace

HSCPlazGit::UpdateCheck HSCPlazGit::checkForUpdate(const std::string& cloneDir, const std::string& url,
                                                   const std::string& proxy, const std::string& branch) {
    UpdateCheck check = lookAt(cloneDir, url, proxy, branch);
    if (!check.reason.empty()) check.moved.reset();
    return check;
}

int HSCPlazGit::hasUpdate(const std::string& cloneDir, const std::string& url, const std::string& proxy,
                          const std::string& branch) {
    // RATIONALE: as it always has, it goes by the first line of git's log alone, even where that tells of a failure.
    return lookAt(cloneDir, url, proxy, branch).moved.value_or(false) ? 1 : 0;
}

HSCPlazGit::Answer HSCPlazGit::askRemote(const std::string& url, const std::string& workDir) {
    const std::string refusal = HSCPlazGitUrl::findRefusal(url);
    if (!refusal.empty()) return {HUTFork::notStarted, "fatal: " + refusal};
    return ask({"ls-remote", "--heads", rebuildUrl(url)}, workDir);
}
