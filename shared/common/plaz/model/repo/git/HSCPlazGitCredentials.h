#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <string>

class HSCPlazCfgModel;
class HSCPlazRepoCfgModel;

/// A user id and a token, and the rules by which they are chosen and put into URLs. Neither is ever shown: in logs and
/// messages, and on command lines, URLs that hold them are masked or given without them.
struct HSCPlazGitCredentials {
    std::string userId;
    std::string token;

    bool isEmpty() const { return userId.empty() && token.empty(); }

    /// Those for a repository of a store of type @p storeType: for a store of type "board" those of the parameters,
    /// where one is set, if its server is the one that they belong to, or is named in the parameter
    /// "plaz.git_servers.board_store"; else those that the configuration has for this URL. The parameters' belong to
    /// the server of "board.repoURL", else to the first one that they were chosen for, which the user's preferences
    /// keep.
    /// @param config  null for none
    static HSCPlazGitCredentials choose(const std::string& storeType, const std::string& url,
                                        const HSCPlazCfgModel* config);
    /// What is told where the parameters' were not chosen because of the server (Msg::boardLoginKept); else nothing.
    static HSCPlazReport explainRefusal(const std::string& store, const std::string& storeType, const std::string& url);
    /// Those of the hub's own repository at @p url.
    static HSCPlazGitCredentials ofHub(const HSCPlazCfgModel* config, const std::string& url);
    /// Those that stand in a web URL, decoded; none in any other.
    static HSCPlazGitCredentials inUrl(const std::string& url);
    /// Those that stand in a proxy, with or without a scheme.
    static HSCPlazGitCredentials inProxy(const std::string& proxy);
    /// @p url with the credentials, percent-encoded, in the place of its own user part. Only "http" and "https" take
    /// them; without credentials, or with another transport, a user part of the URL's own stays.
    std::string putInto(const std::string& url) const;
};

/// Texts of user parts, as git reads them.
namespace HSCPlazGitUrl {

/// Why git is not given @p url; empty when it may be.
std::string findRefusal(const std::string& url);
/// A proxy as git is given it: one that holds a user part has a scheme too, so that it is masked wherever it appears.
std::string normalizeProxy(const std::string& proxy);
/// The proxy on the first line that holds "Proxy=", with port 8080 where it names none; empty when no line does.
std::string findProxy(const std::string& output);

} // namespace HSCPlazGitUrl
