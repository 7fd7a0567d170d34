#include "plaz/model/repo/git/HSCPlazGitEnv.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/HSCPlazUrl.h"
#include "plaz/model/repo/git/HSCPlazGitCertificates.h"
#include "plaz/model/repo/git/HSCPlazGitConfigFile.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitParams.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"
#include "support/HUTText.h"

#include <boost/filesystem/path.hpp>

#include <set>
#include <string_view>

namespace {

struct Setting {
    const char* key;
    const char* value;
};

constexpr Setting settings[] = {
    // Nothing but what was asked for runs.
    {"init.templateDir", ""},
    {"core.fsmonitor", "false"},
    {"gc.auto", "0"},
    {"maintenance.auto", "false"},
    {"submodule.recurse", "false"},
    {"fetch.recurseSubmodules", "false"},
    // Files as they were committed; a link becomes a text file that holds its target.
    {"core.autocrlf", "false"},
    {"core.symlinks", "false"},
    {"core.protectHFS", "true"},
    {"core.protectNTFS", "true"},
    {"core.sparseCheckoutCone", "false"},
    {"init.defaultBranch", HSCPlazName::mainBranch},
    {"init.defaultRefFormat", "files"},
    {"checkout.guess", "true"},
    {"advice.detachedHead", "false"},
    // A branch that was renamed to a directory of branches would block every later fetch.
    {"fetch.prune", "true"},
    // Few files, so that copying a working copy is quick.
    {"fetch.unpackLimit", "1"},
    {"core.logAllRefUpdates", "false"},
};

// RATIONALE: git asks a credential helper by server, wherever it was redirected to. A header that is set for a URL
// would go with every later request of the command, to other servers too.
constexpr const char* credentialHelper =
    "!f() { test \"$1\" != get || printf 'username=%s\\npassword=%s\\n' \"$PLAZ_GIT_USER\" \"$PLAZ_GIT_TOKEN\"; }; f";

// A server that is asked in plain may lead to itself with TLS, whatever the port.
constexpr const char* secureHelper =
    "!f() { test \"$1\" = get || return 0; scheme= host=; while IFS== read -r name value; do case $name in protocol) "
    "scheme=$value;; host) host=$value;; esac; done; test \"$scheme\" = https || return 0; case $host in "
    "\"$PLAZ_GIT_HOST\"|\"$PLAZ_GIT_HOST\":*) printf 'username=%s\\npassword=%s\\n' \"$PLAZ_GIT_USER\" "
    "\"$PLAZ_GIT_TOKEN\";; esac; }; f";

bool hasPrefix(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

bool isKept(const std::string& name) {
    if (!hasPrefix(name, "GIT_")) return true;
    if (name == "GIT_ASKPASS") return HSCPlazGitParams::mayAsk();
    // These two would outrank what HSCPlazGitCertificates decides.
    if (name == "GIT_SSL_NO_VERIFY" || name == "GIT_SSL_CAINFO") return false;
    return hasPrefix(name, "GIT_SSL_") || hasPrefix(name, "GIT_PROXY_SSL_");
}

void dropInherited(HUTFork& git) {
    for (const std::string& variable : HUTEnv::getAll()) {
        const std::string name = variable.substr(0, variable.find('=', 1));
        // Some systems take names of variables without regard to case.
        if (!isKept(HUTText::raised(name))) git.unsetEnv(name);
    }
    git.unsetEnv("LANGUAGE"); // it would outrank LC_ALL
}

// RATIONALE: the terminal stays out of it even where dialogs are allowed: git runs in a process group of its own, and
// one that reads the terminal from there is stopped until the time-out.
void forbidPrompts(HUTFork& git) {
    git.setEnv("GIT_TERMINAL_PROMPT", "0");
    if (HSCPlazGitParams::mayAsk()) return;
    git.setEnv("GIT_ASKPASS", ""); // set but empty: git looks for no other program to ask with
    git.setEnv("GIT_ASK_YESNO", "false");
    git.setEnv("GCM_INTERACTIVE", "never");
    git.setEnv("SSH_ASKPASS_REQUIRE", "never");
    git.setEnv("GIT_SSH_COMMAND", "ssh -oBatchMode=yes");
}

void addSetting(HUTFork& git, std::size_t number, const std::string& key, const std::string& value) {
    git.setEnv("GIT_CONFIG_KEY_" + std::to_string(number), key);
    git.setEnv("GIT_CONFIG_VALUE_" + std::to_string(number), value);
}

// The marker of a complete clone must not outlive what was fetched; a checkout is thrown away soon. Git gives up where
// it cannot flush.
bool hasToFlush(const std::string& command, const std::string& workDir) {
    return command == "fetch" && HUTFile::canFlush(workDir + "/" + HSCPlazStoreLayout::gitDir + "/HEAD");
}

// A working copy belongs to the hub, whoever its disk says it belongs to (network drives). Git asks for the name with
// links resolved, and takes one that begins like a share's for another place unless it is told not to.
void trust(HUTFork& git, std::size_t& count, const std::string& workDir) {
    for (const std::string& dir : std::set{workDir, HUTFile::getRealName(workDir)}) {
        if (dir.empty()) continue;
        addSetting(git, count++, "safe.directory", dir);
        if (hasPrefix(dir, "//")) addSetting(git, count++, "safe.directory", "%(prefix)/" + dir);
    }
}

void addFileSettings(HUTFork& git, std::size_t& count) {
    for (const Setting& setting : settings) addSetting(git, count++, setting.key, setting.value);
    // The user's hooks and attributes are not ours.
    for (const char* key : {"core.hooksPath", "core.attributesFile"})
        addSetting(git, count++, key, HUTFile::getNullDevice());
}

// RATIONALE: a server may lead to any other, which is not checked then either. There git's web client would send what
// the home directory (".netrc") holds for that one, or somebody be asked for it. Who is named may be sent that as well.
void bindLogins(HUTFork& git, std::size_t& count, const std::string& remoteUrl) {
    const bool isGiven = !HSCPlazGitCredentials::inUrl(remoteUrl).isEmpty() && !HSCPlazGitParams::mayAsk();
    if (isGiven || !HSCPlazGitCertificates::isNamed(remoteUrl))
        git.setEnv("HOME", HUTFile::getNullDevice());
    else
        addSetting(git, count++, "http." + HSCPlazUrl::parse(remoteUrl).withoutUser() + ".followRedirects", "false");
}

// RATIONALE: a working copy records http.sslVerify as false while a command runs; what the environment says outranks
// that. Of two settings that a URL fits git takes the one that fits more of it, wherever it stands.
void addCertificateSettings(HUTFork& git, std::size_t& count, const std::string& workDir,
                            const std::string& remoteUrl) {
    const bool areChecked = HSCPlazGitCertificates::areChecked(remoteUrl);
    const HSCPlazUrl url = HSCPlazUrl::parse(remoteUrl);
    addSetting(git, count++, "http.sslVerify", areChecked ? "true" : "false");
    if (url.isHttp())
        addSetting(git, count++, "http." + url.withoutUser() + ".sslVerify", areChecked ? "true" : "false");
    const std::string authorities =
        url.isHttp() ? HSCPlazGitCertificates::findAuthorities(workDir).file : std::string();
    if (!authorities.empty()) {
        addSetting(git, count++, "http.sslCAInfo", authorities);
        addSetting(git, count++, "http.schannelUseSSLCAInfo", "true"); // for what else asks the system alone
    }
    if (!areChecked) bindLogins(git, count, remoteUrl);
}

void addServerSettings(HUTFork& git, std::size_t& count, const std::string& workDir, const std::string& remoteUrl) {
    // A server that falls silent is given up by commands that run without a time limit, too.
    addSetting(git, count++, "http.lowSpeedLimit", "1");
    addSetting(git, count++, "http.lowSpeedTime", std::to_string(HSCPlazGitParams::getTimeOut()));
    const HSCPlazUrl url = HSCPlazUrl::parse(remoteUrl);
    const std::string plain = url.withoutUser();
    // Git itself asks http.proxy for both protocols, and not for what a working copy records as https.proxy.
    const auto proxy = url.isHttps() ? HSCPlazGitConfigFile::findValue(workDir, "https.proxy") : std::nullopt;
    if (proxy) addSetting(git, count++, "http." + plain + ".proxy", *proxy);
    const HSCPlazGitCredentials credentials = HSCPlazGitCredentials::inUrl(remoteUrl);
    if (!credentials.isEmpty()) {
        addSetting(git, count++, "url." + plain + ".insteadOf", remoteUrl);
        addSetting(git, count++, "credential.helper", ""); // no other helper is asked, or told
        addSetting(git, count++, "credential." + url.getServer() + ".helper", credentialHelper);
        if (!url.isHttps()) {
            addSetting(git, count++, "credential.helper", secureHelper);
            git.setEnv("PLAZ_GIT_HOST", url.getHostName());
        }
        git.setEnv("PLAZ_GIT_USER", credentials.userId);
        git.setEnv("PLAZ_GIT_TOKEN", credentials.token);
    }
}

void addSettings(HUTFork& git, const std::string& command, const std::string& workDir, const std::string& remoteUrl) {
    std::size_t count = 0;
    // All that "config" goes by, which runs before and after every other command.
    addSetting(git, count++, "core.longpaths", "true");
    trust(git, count, workDir);
    addSetting(git, count++, "core.fsync", hasToFlush(command, workDir) ? "committed,reference" : "none");
    if (command != "config") {
        addFileSettings(git, count);
        addServerSettings(git, count, workDir, remoteUrl);
        if (HSCPlazGitEnv::mayTransfer(command)) addCertificateSettings(git, count, workDir, remoteUrl);
    }
    git.setEnv("GIT_CONFIG_COUNT", std::to_string(count));
    git.setEnv("GIT_CONFIG_GLOBAL", HUTFile::getNullDevice());
    git.setEnv("GIT_ATTR_NOSYSTEM", "1");
    git.setEnv("GIT_NO_REPLACE_OBJECTS", "1"); // an id stands for what it was made of
}

} // namespace

bool HSCPlazGitEnv::mayTransfer(const std::string& command) {
    static const std::set<std::string> commands{"clone", "fetch", "ls-remote", "pull", "push"};
    return commands.count(command) != 0;
}

void HSCPlazGitEnv::apply(HUTFork& git, const std::string& command, const std::string& workDir,
                          const std::string& remoteUrl) {
    dropInherited(git);
    forbidPrompts(git);
    addSettings(git, command, workDir, remoteUrl);
    // What is meant to be local must not fetch what a working copy lacks. No server leads out of TLS.
    const char* const transports = HSCPlazUrl::parse(remoteUrl).isHttps() ? "https" : "file:git:http:https:ssh";
    git.setEnv("GIT_ALLOW_PROTOCOL", mayTransfer(command) ? transports : "none");
    if (command == "pull" || command == "commit") // the former asks whose a commit would be, though it makes none
        for (const char* role : {"GIT_COMMITTER_", "GIT_AUTHOR_"}) {
            git.setEnv(std::string(role) + "NAME", "plaz");
            git.setEnv(std::string(role) + "EMAIL", "plaz@localhost");
        }
    git.setEnv("LC_ALL", "C.UTF-8"); // error lines are recognised by their English words
    // A directory whose ".git" is gone must not be taken for a part of a repository around it.
    git.setEnv("GIT_CEILING_DIRECTORIES", boost::filesystem::path(workDir).parent_path().generic_string());
}
