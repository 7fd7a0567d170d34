#include "plaz/model/repo/HSCPlazGitHead.h"

#include "plaz/HSCPlazTrust.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"

#include <sstream>

namespace {

/// The commit of a ref that has been packed together with others: lines "<commit> <ref>".
std::string findPacked(const std::string& packedRefs, const std::string& ref) {
    std::istringstream lines(packedRefs);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t blank = line.find(' ');
        if (blank != std::string::npos && line.substr(blank + 1) == ref) return line.substr(0, blank);
    }
    return "";
}

} // namespace

bool HSCPlazGitHead::moveTo(const std::string& dir, const std::string& branch) {
    const std::string gitDir = dir + "/.git/";
    const std::string ref = "refs/remotes/origin/" + branch;
    std::string commit;
    if (HIOStream::read(gitDir + ref, commit) == HIOStream::Status::ok) {
        commit = commit.substr(0, commit.find('\n'));
    } else {
        std::string packed;
        HIOStream::read(gitDir + "packed-refs", packed);
        commit = findPacked(packed, ref);
    }
    return HSCPlazTrust::isCommitId(commit) && HUTFile::writeAtomically(gitDir + "HEAD", commit + "\n");
}
