// The remotes, asked as a refresh would.

#include "DoctorChecks.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazTrust.h"
#include "support/HUTFile.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <sstream>

namespace {

constexpr const char* branchRef = "refs/heads/";

/// The branches that git lists, one a line, behind the commit of each.
std::vector<std::string> readBranches(const std::string& heads) {
    std::vector<std::string> branches;
    std::istringstream lines(heads);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t at = line.find(branchRef);
        if (at != std::string::npos) branches.push_back(line.substr(at + std::strlen(branchRef)));
    }
    return branches;
}

/// The branch that a refresh would follow; empty for none.
std::string chooseBranch(const std::vector<std::string>& branches, const std::string& named) {
    for (const std::string& wanted : {named, std::string(HSCPlazName::mainBranch)})
        if (std::count(branches.begin(), branches.end(), wanted) > 0) return wanted;
    return named.empty() && branches.size() == 1 ? branches.front() : std::string();
}

} // namespace

doctor::TrialCopy::TrialCopy() : m_dir(HUTFile::getTemporaryName()) {
    if (!HUTFile::makeNewDir(m_dir))
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::dirNotWritable, m_dir));
    try {
        HSCPlazInspection::makeWorkingCopy(m_dir);
    } catch (...) {
        HUTFile::rmRecursive(m_dir);
        throw;
    }
}

doctor::TrialCopy::~TrialCopy() {
    HUTFile::rmRecursive(m_dir);
}

Finding doctor::checkRemote(const std::string& subject, const std::string& url, const std::string& branch,
                            const std::string& trial) {
    const std::string shown = HSCPlazTrust::maskSecrets(url);
    if (url.empty())
        return warning(subject, "none is named, so it cannot be refreshed", "Choose one: plaz hub set URL.");
    const auto start = std::chrono::steady_clock::now();
    const HSCPlazInspection::Answer answer = HSCPlazInspection::askRemote(url, trial);
    const auto spent =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
    const std::string after = std::to_string(spent) + " ms";
    const std::string followed = chooseBranch(readBranches(answer.text), branch);
    Finding finding;
    if (!answer.isGiven)
        finding = problem(subject, shown + " does not answer (" + after + "): " + answer.reason,
                          answer.advice.empty()
                              ? "Check URL, network, proxy and credentials. What was refreshed last stays in force."
                              : answer.advice);
    else if (followed.empty())
        finding = problem(
            subject, shown + " has no branch " + (branch.empty() ? "" : branch + " and no ") + HSCPlazName::mainBranch,
            "Check the URL, or tell the store's maintainer.");
    else if (branch.empty() || followed == branch)
        finding = ok(subject, shown + " answers (" + after + ") and has the branch " + followed);
    else
        finding = warning(subject, shown + " has no branch " + branch + "; its " + followed + " is followed",
                          "Tell the store's maintainer.");
    finding.milliseconds = static_cast<int>(spent);
    return finding;
}
