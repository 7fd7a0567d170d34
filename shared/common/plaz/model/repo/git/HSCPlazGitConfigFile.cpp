#include "plaz/model/repo/git/HSCPlazGitConfigFile.h"

#include "plaz/model/repo/git/HSCPlazGitLog.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"

#include <string_view>

using HSCPlazGitTrace::trace;

namespace {

std::string fileOf(const std::string& dir) {
    return dir + "/.git/config";
}

std::string read(const std::string& dir) {
    std::string content;
    HIOStream::read(fileOf(dir), content);
    return content;
}

} // namespace

std::optional<std::string> HSCPlazGitConfigFile::findValue(const std::string& dir, const std::string& key) {
    return HSCPlazGitLog::findConfigValue(HSCPlazGitLog::withPlainSections(read(dir)), key);
}

std::string HSCPlazGitConfigFile::getRemoteUrl(const std::string& dir) {
    const std::string config = read(dir);
    trace("getRemoteUrl - initial contents - \n", config);
    const std::string plain = HSCPlazGitLog::withPlainSections(config);
    trace("getRemoteUrl - final contents - \n", plain);
    const std::optional<std::string> url = HSCPlazGitLog::findConfigValue(plain, "remote_origin.url");
    if (url)
        trace("remote.origin.url = ", *url);
    else
        trace("getRemoteUrl - exception while reading git config file");
    return url.value_or("");
}

bool HSCPlazGitConfigFile::putUserPart(const std::string& dir, const std::string& userPart) {
    static constexpr std::string_view mask = "://***@";
    std::string config = read(dir);
    const std::size_t at = config.find(mask);
    if (at == std::string::npos) return false;
    config.replace(at, mask.size(), "://" + userPart + "@");
    return HUTFile::writeAtomically(fileOf(dir), config, true);
}
