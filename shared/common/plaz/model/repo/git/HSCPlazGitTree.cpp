#include "plaz/model/repo/git/HSCPlazGitTree.h"

#include "plaz/base/HSCPlazStoreLayout.h"

HSCPlazGitAnswer HSCPlazGitTree::list(const HSCPlazWorkLayout& layout, const std::string& commit,
                                      const std::string& root) {
    std::vector<std::string> command{"ls-tree", "-r", "-z", "--full-tree", "--", commit};
    if (!root.empty()) command.push_back(root);
    return HSCPlazGitRunner::ask(command, layout.getIndex());
}
