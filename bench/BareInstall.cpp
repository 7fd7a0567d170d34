#include "BareInstall.h"

void BareInstall::run(const std::string& staging, const std::string& itemRoot, const std::string& commit) {
    copyIndexBare(m_index, staging);
    m_git.select(itemRoot + "\n", staging);
    m_git.runBracketed({"checkout", commit}, staging);
}
