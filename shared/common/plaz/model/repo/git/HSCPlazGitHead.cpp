#include "plaz/model/repo/git/HSCPlazGitHead.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazTrust.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem.hpp>

#include <set>
#include <sstream>

namespace fs = boost::filesystem;

namespace {

constexpr const char* branches = "refs/remotes/origin/";

std::string gitFile(const std::string& dir, const std::string& file) {
    return dir + "/.git/" + file;
}

std::string readText(const std::string& file) {
    std::string text;
    HIOStream::read(file, text);
    return text;
}

/// Hands the refs that have been packed together to @p visit: lines "<commit> <ref>".
template <typename Visit> void visitPacked(const std::string& dir, Visit visit) {
    std::istringstream lines(readText(gitFile(dir, "packed-refs")));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t blank = line.find(' ');
        if (blank != std::string::npos) visit(line.substr(0, blank), line.substr(blank + 1));
    }
}

} // namespace

std::string HSCPlazGitHead::getCommit(const std::string& dir, const std::string& branch) {
    if (!HSCPlazTrust::isSafeRelativePath(branch)) return "";
    const std::string ref = branches + branch;
    const std::string loose = readText(gitFile(dir, ref));
    std::string commit = loose.substr(0, loose.find('\n'));
    if (commit.empty())
        visitPacked(dir, [&](const std::string& packed, const std::string& name) {
            if (name == ref) commit = packed;
        });
    return HSCPlazTrust::isCommitId(commit) ? commit : std::string();
}

std::string HSCPlazGitHead::findBranch(const std::string& dir, const std::string& branch) {
    for (const std::string& name : {branch, std::string(HSCPlazName::mainBranch)})
        if (!getCommit(dir, name).empty()) return name;
    const std::vector<std::string> names = branch.empty() ? listBranches(dir) : std::vector<std::string>();
    return names.size() == 1 ? names.front() : std::string();
}

std::vector<std::string> HSCPlazGitHead::listBranches(const std::string& dir) {
    std::set<std::string> names;
    for (const std::string& name : HUTFile::listTree(gitFile(dir, branches)))
        if (!getCommit(dir, name).empty()) names.insert(name);
    visitPacked(dir, [&](const std::string&, const std::string& name) {
        if (boost::algorithm::starts_with(name, branches)) names.insert(name.substr(std::string(branches).size()));
    });
    return {names.begin(), names.end()};
}

std::string HSCPlazGitHead::getOwn(const std::string& dir) {
    const std::string text = readText(gitFile(dir, "HEAD"));
    const std::string commit = text.substr(0, text.find('\n'));
    return HSCPlazTrust::isCommitId(commit) ? commit : std::string();
}

bool HSCPlazGitHead::isAt(const std::string& dir, const std::string& branch) {
    return readText(gitFile(dir, "HEAD")) == "ref: refs/heads/" + branch + "\n";
}

bool HSCPlazGitHead::makeLocal(const std::string& dir, const std::string& branch) {
    const std::string file = gitFile(dir, "refs/heads/" + branch);
    return HUTFile::mkDirRecursive(fs::path(file).parent_path().generic_string()) &&
           HUTFile::writeAtomically(file, getCommit(dir, branch) + "\n");
}

bool HSCPlazGitHead::moveTo(const std::string& dir, const std::string& branch) {
    const std::string commit = getCommit(dir, findBranch(dir, branch));
    return !commit.empty() && HUTFile::writeAtomically(gitFile(dir, "HEAD"), commit + "\n");
}
