#include "plaz/model/repo/git/HSCPlazGitHistory.h"

#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/repo/git/HSCPlazGitRunner.h"
#include "support/HUTText.h"

#include <sstream>

namespace {

constexpr std::size_t longestSubject = 500;

} // namespace

std::vector<std::string> HSCPlazGitHistory::listSubjects(const std::string& dir, const std::string& from,
                                                         const std::string& to) {
    std::vector<std::string> subjects;
    if (from == to || !HSCPlazTrust::isCommitId(from) || !HSCPlazTrust::isCommitId(to)) return subjects;
    const HSCPlazGitAnswer answer =
        HSCPlazGitRunner::ask({"log", "--format=%s", "--max-count=20", from + ".." + to, "--"}, dir);
    std::istringstream lines(answer.status == 0 ? answer.text : std::string());
    for (std::string line; std::getline(lines, line);)
        subjects.push_back(HUTText::repaired(line.substr(0, longestSubject)));
    return subjects;
}
