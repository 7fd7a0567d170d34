#include "plaz/model/repo/git/HSCPlazGitCheckout.h"

#include "plaz/model/repo/git/HSCPlazGitLog.h"
#include "plaz/model/repo/git/HSCPlazGitRunner.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "support/HIOStream.h"

void HSCPlazGitCheckout::enableSparse(const std::string& dir) {
    HSCPlazGitRunner::configure(dir, "core.sparsecheckout", "true");
}

bool HSCPlazGitCheckout::writeSparseList(const std::string& dir, const std::vector<std::string>& paths) {
    auto file = HIOStream::openForWriting(dir + "/.git/info/sparse-checkout", std::ios::trunc);
    for (const std::string& path : paths) {
        HSCPlazGitTrace::trace(" adding ", path, " for sparse checkout");
        file << HSCPlazGitLog::toSparsePattern(path) << '\n';
    }
    file.close();
    return static_cast<bool>(file);
}

void HSCPlazGitCheckout::checkOut(const std::string& dir, const std::string& ref) {
    HSCPlazGitRunner::run({"checkout", ref}, dir);
}
