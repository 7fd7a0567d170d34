#include "plaz/model/repo/git/HSCPlazGitTree.h"

#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/HSCPlazTrust.h"
#include "support/HUTFork.h"

HSCPlazGitAnswer HSCPlazGitTree::list(const HSCPlazWorkLayout& layout, const std::string& commit,
                                      const std::string& root) {
    std::vector<std::string> command{"ls-tree", "-r", "-z", "--full-tree", "--", commit};
    if (!root.empty()) command.push_back(root);
    HSCPlazGitAnswer answer = HSCPlazGitRunner::ask(command, layout.getIndex());
    if (answer.status != 0 && !HSCPlazTrust::isCommitId(commit)) {
        command[5] = "origin/" + commit; // of branches the working copy has only what the remote has
        answer = HSCPlazGitRunner::ask(command, layout.getIndex());
    }
    if (answer.isHeard || answer.status != 0) return answer;
    return {HUTFork::notStarted, "fatal: what git lists cannot be written into a temporary file"};
}
