#include "plaz/model/repo/git/HSCPlazGitOwnership.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/repo/git/HSCPlazGitConfigFile.h"
#include "plaz/model/repo/git/HSCPlazGitConfigText.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"
#include "support/HUTFileTree.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <set>
#include <string_view>
#include <vector>

using Entries = std::vector<HSCPlazGitConfigText::Entry>;

namespace {

constexpr const char* helperKey = "credential.helper";
constexpr const char* urlKey = "remote.origin.url";

/// Through these a repository takes parts of itself, or settings, from elsewhere.
constexpr const char* detours[] = {"commondir", "config.worktree", "objects/info/alternates",
                                   "objects/info/http-alternates"};

/// Into these git writes, and takes from them what it works with.
constexpr const char* folders[] = {"info", "objects",    "objects/info", "objects/pack",
                                   "refs", "refs/heads", "refs/remotes", "refs/tags"};

bool isRecorded(const std::string& key) {
    static const std::set<std::string> known{
        // what "init" writes, on any system and whatever the system's own settings are
        "core.bare", "core.filemode", "core.hidedotfiles", "core.ignorecase", "core.logallrefupdates",
        "core.precomposeunicode", "core.repositoryformatversion", "core.sharedrepository", "core.symlinks",
        "extensions.objectformat", "receive.denynonfastforwards",
        // what the hub has recorded in any release
        "core.sparsecheckout", "core.sparsecheckoutcone", helperKey, "http.proxy", "http.sslcainfo", "http.sslverify",
        "https.proxy", "remote.origin.fetch", urlKey,
        // who somebody is does no harm
        "user.email", "user.name"};
    return known.count(key) != 0;
}

/// What a checkout notes of a branch that it makes.
bool isOfBranch(const std::string& key) {
    if (!boost::algorithm::starts_with(key, "branch.")) return false;
    const std::string_view variable = std::string_view(key).substr(key.rfind('.'));
    return variable == ".remote" || variable == ".merge" || variable == ".rebase";
}

/// An empty helper keeps others from being asked; any other is a program.
bool isKnown(const HSCPlazGitConfigText::Entry& entry) {
    if (entry.key == helperKey) return entry.value && entry.value->empty();
    return isRecorded(entry.key) || isOfBranch(entry.key);
}

/// What the hub compares must be what git goes by.
bool isUrlPlain(const std::string& dir, const Entries& entries) {
    const auto isUrl = [](const HSCPlazGitConfigText::Entry& entry) { return entry.key == urlKey; };
    const auto url = std::find_if(entries.begin(), entries.end(), isUrl);
    if (url == entries.end()) return true;
    return std::count_if(url, entries.end(), isUrl) == 1 && url->value == HSCPlazGitConfigFile::getRemoteUrl(dir);
}

std::string findForeignSetting(const std::string& dir, const std::string& file) {
    std::string text;
    const auto entries =
        HIOStream::read(file, text) == HIOStream::Status::ok ? HSCPlazGitConfigText::parse(text) : std::nullopt;
    if (!entries) return "its configuration cannot be read";
    const auto foreign = std::find_if_not(entries->begin(), entries->end(), isKnown);
    if (foreign != entries->end()) return "its configuration sets \"" + HSCPlazTrust::maskSecrets(foreign->key) + "\"";
    return isUrlPlain(dir, *entries) ? std::string() : "its configuration names its remote in another way";
}

bool isThere(const std::string& path) {
    return HUTFile::exists(path) || HUTFileTree::isLink(path);
}

/// Where git would find a repository; empty where it would find none.
std::string findRepository(const std::string& dir) {
    const std::string inside = dir + "/" + HSCPlazStoreLayout::gitDir;
    if (isThere(inside)) return inside;
    return HUTFile::exists(dir + "/HEAD") ? dir : std::string(); // one without files stands in the open
}

std::string requireOwn(const std::string& path) {
    return HUTFile::isOwn(path) || !isThere(path) ? std::string() : "\"" + path + "\" is not this user's";
}

std::string findDetour(const std::string& repository) {
    for (const char* name : detours)
        if (std::string file = repository + "/" + name; isThere(file)) return file;
    for (const char* name : folders)
        if (std::string folder = repository + "/" + name; HUTFileTree::isLink(folder)) return folder;
    return {};
}

} // namespace

std::string HSCPlazGitOwnership::findObjection(const std::string& dir) {
    const std::string repository = dir.empty() ? dir : findRepository(dir);
    if (repository.empty()) return {};
    if (HUTFileTree::isLink(repository) || !HUTFile::isDirectory(repository))
        return "\"" + repository + "\" is no directory";
    const std::string config = repository + "/config";
    for (const std::string& path : {HUTFile::getRealName(dir), repository, config})
        if (std::string objection = requireOwn(path); !objection.empty()) return objection;
    std::string detour = findDetour(repository);
    if (!detour.empty()) return "\"" + detour + "\" leads elsewhere";
    return HUTFile::exists(config) ? findForeignSetting(dir, config) : std::string();
}

std::string HSCPlazGitOwnership::findObjectionToOwn(const std::string& dir) {
    std::string objection = requireOwn(dir);
    if (objection.empty()) objection = findObjection(dir);
    const std::string repository = findRepository(dir);
    if (objection.empty() && !repository.empty() && HUTFile::isOpenToOthers(repository))
        objection = "others could write to \"" + repository + "\"";
    return objection;
}

void HSCPlazGitOwnership::require(const std::string& dir) {
    const std::string objection = findObjection(dir);
    if (!objection.empty())
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::workingCopyRefused, dir, objection));
}
