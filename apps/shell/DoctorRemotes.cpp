// The remotes, asked as a refresh would.

#include "DoctorChecks.h"

#include "plaz/HSCPlazMsg.h"
#include "plaz/HSCPlazTrust.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "support/HUTFile.h"

#include <boost/filesystem/operations.hpp>

#include <chrono>

namespace fs = boost::filesystem;

namespace {

bool hasBranch(const std::string& heads, const std::string& branch) {
    return (heads + "\n").find("\trefs/heads/" + branch + "\n") != std::string::npos;
}

} // namespace

doctor::TrialCopy::TrialCopy() : m_dir((fs::temp_directory_path() / fs::unique_path("plaz-%%%%-%%%%-%%%%")).string()) {
    try {
        if (!HUTFile::mkDirRecursive(m_dir) || !HSCPlazGit::initWorkingCopy(m_dir))
            throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::dirNotWritable, m_dir));
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
        return warning(subject, "none is named, so it cannot be refreshed",
                       "Name one in the configuration or in ZENTOR_PLAZ_REMOTE_REPO_PATH.");
    const auto start = std::chrono::steady_clock::now();
    const HSCPlazGit::Answer answer = HSCPlazGit::askRemote(url, trial);
    const auto spent =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
    const std::string after = std::to_string(spent) + " ms";
    Finding finding;
    if (answer.status != 0)
        finding = problem(subject, shown + " does not answer (" + after + "): " + answer.getReason(),
                          "Check URL, network, proxy and credentials. What was refreshed last stays in force.");
    else if (hasBranch(answer.text, branch))
        finding = ok(subject, shown + " answers (" + after + ") and has the branch " + branch);
    else if (hasBranch(answer.text, "master"))
        finding = warning(subject, shown + " has no branch " + branch + "; its master is followed",
                          "Tell the store's maintainer.");
    else
        finding = problem(subject, shown + " has neither a branch " + branch + " nor master",
                          "Check the URL, or tell the store's maintainer.");
    finding.milliseconds = static_cast<int>(spent);
    return finding;
}
