#pragma once

#include <string>

class HSCPlazQStoreModel;
class HSCPlazRepoCfgModel;

/// A user id and a token, and the rules by which they are chosen and put into URLs. Neither is ever shown: in logs and
/// messages, and on command lines, URLs that hold them are masked or given without them.
struct HSCPlazGitCredentials {
    std::string userId;
    std::string token;

    bool isEmpty() const { return userId.empty() && token.empty(); }

    /// Those for a repository of a store of type @p storeType: the parameters of the board store for a store of type
    /// "board", where one is set; else those that the configuration file has for this URL.
    static HSCPlazGitCredentials choose(const std::string& storeType, const std::string& url);
    /// Those of one entry of the configuration file, for @p url; none where the entry is null or names another server.
    static HSCPlazGitCredentials ofEntry(const HSCPlazRepoCfgModel* entry, const std::string& url);
    /// Those that stand in a web URL, decoded; none in any other.
    static HSCPlazGitCredentials inUrl(const std::string& url);
};

/// URLs of repositories and proxies, with and without the user part ("user:token@").
namespace HSCPlazGitUrl {

/// Why git is not given @p url; empty when it may be.
std::string findRefusal(const std::string& url);
/// A store's URL without our credentials: its own, or for a store of type "board" the parameter "board.repoURL".
std::string ofStore(const HSCPlazQStoreModel& store);
/// The same with the store's credentials. This is what a working copy records.
std::string ofStoreWithCredentials(const HSCPlazQStoreModel& store);

/// The URL with the credentials, percent-encoded, in the place of its own user part. Only "http" and "https" take
/// them; without credentials, or with another transport, a user part of the URL's own stays.
std::string withCredentials(const std::string& url, const HSCPlazGitCredentials& credentials);
/// What stands between "://" and "@"; empty when there is nothing.
std::string getUserPart(const std::string& url);
std::string withoutUserPart(const std::string& url);
bool isHttp(const std::string& url); ///< or "https"
bool isHttps(const std::string& url);
/// Scheme, host and port, in lower case.
std::string getServer(const std::string& url);

/// A proxy as git is given it: one that holds a user part has a scheme too, so that it is masked wherever it appears.
std::string normalizeProxy(const std::string& proxy);
/// The proxy on the first line that holds "Proxy=", with port 8080 where it names none; empty when no line does.
std::string findProxy(const std::string& output);

} // namespace HSCPlazGitUrl
