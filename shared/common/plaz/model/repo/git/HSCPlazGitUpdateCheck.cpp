#include "plaz/model/repo/git/HSCPlazGitUpdateCheck.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/repo/git/HSCPlazGitCertificates.h"
#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/model/repo/git/HSCPlazGitOutput.h"
#include "plaz/model/repo/git/HSCPlazGitOwnership.h"
#include "plaz/model/repo/git/HSCPlazGitProgram.h"
#include "plaz/model/repo/git/HSCPlazGitRunner.h"
#include "plaz/model/repo/git/HSCPlazGitSettings.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "support/HUTFork.h"
#include "support/HUTText.h"

#include <sstream>

using HSCPlazGitTrace::trace;
using HSCPlazName::mainBranch;

namespace {

constexpr std::size_t comparedLength = 7;

// A double quote cannot be part of an argument there, so it could end one early.
bool fitsCommandLine(const std::string& url) {
    return HSCPlazTrust::isSafeUrl(url) && url.find('"') == std::string::npos;
}

/// @return the exit status
std::uint32_t run(const std::string& arguments, const std::string& dir, const std::string& output) {
    std::uint32_t exitCode = 0;
    // RATIONALE: the program stands unquoted, as it always has; the runner finds its end.
    if (HSCPlazGitRunner::runDirect(HSCPlazGitProgram::require() + arguments, dir, output, exitCode,
                                    HSCPlazGitParams::getTimeOut()) == 0)
        return exitCode;
    trace("Error : exec_git_win");
    return HUTFork::notStarted;
}

/// Whether the first head that the branch names differs from the local one; nothing when no line names the branch.
std::optional<bool> compare(const std::string& localLine, const std::string& heads, const std::string& branch,
                            const HSCPlazGitSecrets& secrets) {
    const std::string target = "refs/heads/" + branch;
    std::istringstream lines(heads);
    for (std::string line; std::getline(lines, line);) {
        trace("ls-remote = ", secrets.mask(line));
        if (line.find(target) != std::string::npos)
            return localLine.substr(0, comparedLength) != line.substr(0, comparedLength);
    }
    return std::nullopt;
}

} // namespace

std::optional<bool> HSCPlazGitUpdateCheck::isMoved(const std::string& log, const std::string& heads,
                                                   const std::string& branch, const HSCPlazGitSecrets& secrets) {
    const std::string localLine = log.substr(0, log.find('\n'));
    trace("log = ", localLine);
    if (localLine.empty()) return std::nullopt;
    std::optional<bool> moved = compare(localLine, heads, branch, secrets);
    if (!moved && branch == mainBranch)
        trace("Already checked for ", mainBranch, ", so breaking the loop");
    else if (!moved)
        moved = compare(localLine, heads, mainBranch, secrets);
    return moved;
}

namespace {

/// What the two outputs say, and why that is not to be relied on, if it is not.
HSCPlazUpdateCheck askAndCompare(const std::string& cloneDir, const std::string& url, const std::string& branch) {
    const HSCPlazGitOutput logFile(cloneDir + "/__git1.log");
    const HSCPlazGitOutput headsFile(cloneDir + "/__git2.log");
    run(" log --oneline -n 1", cloneDir, logFile.getName());
    const std::string argument = url.find(' ') == std::string::npos ? url : '"' + url + '"';
    const std::uint32_t status = run(" ls-remote " + argument, cloneDir, headsFile.getName());
    const std::string log = logFile.read();
    const std::string heads = headsFile.read();
    const HSCPlazGitSecrets secrets(url, cloneDir);
    HSCPlazUpdateCheck check{HSCPlazGitUpdateCheck::isMoved(log, heads, branch, secrets), {}};
    trace(url, " ", branch, check.moved.value_or(false) ? " has updates!" : " has no updates!");
    if (status != 0)
        check.reason = HSCPlazGitAnswer{static_cast<int>(status), secrets.mask(heads)}.getReason();
    else if (log.empty())
        check.reason = "the working copy \"" + cloneDir + "\" holds no commit";
    else if (!check.moved)
        check.reason = "the remote has no branch \"" + branch + "\"";
    if (status != 0) check.details = HSCPlazGitCertificates::explainOnce(url, heads, cloneDir);
    return check;
}

/// Where none is named: the one that is followed.
std::string branchToCheck(const std::string& cloneDir, const std::string& branch) {
    if (!branch.empty()) return branch;
    const std::string followed = HSCPlazGitHead::findBranch(cloneDir, "");
    return followed.empty() ? mainBranch : followed;
}

} // namespace

HSCPlazUpdateCheck HSCPlazGitUpdateCheck::look(const std::string& cloneDir, const std::string& access,
                                               const std::string& proxy, const std::string& branch) {
    if (!HSCPlazStoreLayout::isComplete(cloneDir))
        return {std::nullopt, "the working copy \"" + cloneDir + "\" is not complete"};
    if (!fitsCommandLine(access)) return {std::nullopt, "its URL is not safe to give to git"};
    try {
        HSCPlazGitOwnership::require(cloneDir);
        HSCPlazGitSettings::setProxy(cloneDir, proxy);
        return askAndCompare(cloneDir, access, branchToCheck(cloneDir, branch));
    } catch (const std::exception& failure) {
        trace("Error while fetching log data from git repo ", access);
        return {std::nullopt, HUTText::withoutFullStop(failure.what())};
    }
}
