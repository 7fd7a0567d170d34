#include "plaz/tasks/HSCPlazSampleHubTask.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/repo/git/HSCPlazGitRepositories.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazTask.h"
#include "support/HIOStream.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>

namespace {

constexpr const char* shippedMetadata = "sample-hub/plaz.json";
constexpr const char* repositoriesMark = "@REPOSITORIES@";
constexpr const char* bundleEnding = ".bundle";
constexpr const char* ownRepository = "/hub";
constexpr const char* hubFile = "plaz.json";

/// Where the repositories are, as their URLs begin.
std::string urlOf(const std::string& dir) {
    return (dir.front() == '/' ? "file://" : "file:///") + boost::algorithm::replace_all_copy(dir, "%", "%25");
}

void unpackStores(const std::string& shipped, const std::string& dir) {
    for (const std::string& name : HUTFile::createFileIter(shipped))
        if (boost::algorithm::ends_with(name, bundleEnding))
            HSCPlazGitRepositories::unpack(shipped + '/' + name,
                                           dir + '/' + boost::algorithm::replace_last_copy(name, bundleEnding, ".git"));
}

/// @param metadata  of the hub, as it is shipped
bool makeOwn(const std::string& dir, const std::string& metadata) {
    const std::string text =
        boost::algorithm::replace_all_copy(metadata, repositoriesMark, urlOf(HSCPlazPathMgr::getSampleHubDir()));
    const std::string repository = dir + ownRepository;
    if (!HUTFile::mkDirRecursive(repository) || !HUTFile::writeAtomically(repository + "/" + hubFile, text))
        return false;
    HSCPlazGitRepositories::commit(repository, hubFile, "The sample hub");
    return true;
}

} // namespace

std::string HSCPlazSampleHubTask::getUrl() {
    return urlOf(HSCPlazPathMgr::getSampleHubDir()) + ownRepository;
}

bool HSCPlazSampleHubTask::make(HSCPlazTask& task) {
    const std::string data = HUTEnv::getOwnDataDir(shippedMetadata);
    const std::string shipped = data + "/sample-hub";
    std::string metadata;
    if (data.empty() || HIOStream::read(shipped + "/plaz.json", metadata) != HIOStream::Status::ok)
        return task.fail(Msg::sampleHubMissing);
    const std::string dir = HSCPlazPathMgr::getSampleHubDir();
    const std::string fresh = dir + ".new";
    if (!HUTFile::rmRecursive(fresh) || !HUTFile::mkDirRecursive(fresh)) return task.fail(Msg::dirNotWritable, fresh);
    const bool isMade = task.guard([&] {
        unpackStores(shipped, fresh);
        return makeOwn(fresh, metadata) && HUTFile::replaceDirectory(fresh, dir);
    });
    HUTFile::rmRecursive(fresh);
    return isMade || task.isCancelled() || task.getReport().findProblem() || task.fail(Msg::dirNotWritable, dir);
}
