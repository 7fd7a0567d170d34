#pragma once

#include <cstddef>
#include <string>

/// A URL taken apart: "https://", "user:token", "host:8080" and "/owner/name.git". What has no "://", a path on the
/// disk or "user@host:path", is a path as a whole.
struct HSCPlazUrl {
    std::string scheme; ///< as it stands, "://" included
    std::string user;   ///< what stands before the "@"
    std::string host;   ///< and its port
    std::string path;   ///< from the first "/" behind the host
    bool hasUser = false;

    static HSCPlazUrl parse(const std::string& text);
    /// The URL put together again.
    std::string toText() const;
    std::string withoutUser() const { return scheme + host + path; }
    /// Scheme, host and port, in lower case.
    std::string getServer() const;
    /// The host without its port.
    std::string getHostName() const;
    bool isHttp() const; ///< or "https"
    bool isHttps() const;
    /// "owner/name.git", also of "git@host:owner/name.git".
    std::string getPathOnHost() const;

    /// Where the user part ends (its "@") of a URL in a longer text whose authority begins there and which ends at @p
    /// end; npos without one. A secret may hold a "/" as it is; what stands before that is then no host, for its port
    /// is no number.
    static std::size_t findUserEnd(const std::string& text, std::size_t authority, std::size_t end);
    /// A URL without its ".git" ending; any other URL as it stands.
    static std::string withoutGitSuffix(const std::string& url);
};
