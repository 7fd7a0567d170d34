#include "plaz/model/repo/git/HSCPlazGitCheckout.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/repo/git/HSCPlazGitEnv.h"
#include "plaz/model/repo/git/HSCPlazGitLog.h"
#include "plaz/model/repo/git/HSCPlazGitOwnership.h"
#include "plaz/model/repo/git/HSCPlazGitRunner.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "support/HUTFile.h"

namespace {

bool writeInfo(const std::string& dir, const char* file, const std::string& content) {
    const std::string info = dir + "/.git/info/";
    return HUTFile::isDirectory(dir + "/.git") && HUTFile::mkDirRecursive(info) &&
           HUTFile::writeUnflushed(info + file, content);
}

} // namespace

void HSCPlazGitCheckout::enableSparse(const std::string& dir) {
    HSCPlazGitRunner::configure(dir, "core.sparsecheckout", "true");
}

bool HSCPlazGitCheckout::writeSparseList(const std::string& dir, const std::vector<std::string>& paths) {
    std::string list;
    for (const std::string& path : paths) {
        HSCPlazGitTrace::trace(" adding ", path, " for sparse checkout");
        list += HSCPlazGitLog::toSparsePattern(path) + '\n';
    }
    return writeInfo(dir, "sparse-checkout", list);
}

void HSCPlazGitCheckout::keepPlain(const std::string& dir) {
    HSCPlazGitOwnership::require(dir);
    const bool isThere = HUTFile::isDirectory(dir + "/.git"); // otherwise git will say so
    if (isThere && !writeInfo(dir, "attributes", HSCPlazGitEnv::plainAttributes))
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::dirNotWritable, dir));
}

void HSCPlazGitCheckout::checkOut(const std::string& dir, const std::string& ref) {
    keepPlain(dir);
    HSCPlazGitRunner::run({"checkout", ref}, dir);
}
