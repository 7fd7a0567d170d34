#pragma once

/// Names by which users and hosts steer the hub, each in this one place.
namespace HSCPlazName {

// Environment variables.
inline constexpr const char* userRepoVariable = "ZENTOR_PLAZ_USER_REPO_PATH";
inline constexpr const char* remoteRepoVariable = "ZENTOR_PLAZ_REMOTE_REPO_PATH";
inline constexpr const char* userAreaRootVariable = "ZENTOR_PLAZ_USERAREA_ROOT_DIR";
inline constexpr const char* localRootVariable = "ZENTOR_PLAZ_LOCAL_ROOT_DIR";
inline constexpr const char* sharedRootVariable = "ZENTOR_PLAZ_SHARED_ROOT_DIR";
inline constexpr const char* localUserDataVariable = "ZENTOR_PLAZ_LOCAL_USER_DATA";
/// Reserved for a database location of its own; no rule asks for it yet.
inline constexpr const char* localDbVariable = "ZENTOR_PLAZ_LOCAL_DB_PATH";
/// Those from which git takes a proxy where none is set.
inline constexpr const char* proxyVariables[] = {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"};

// Preferences of the user's.
inline constexpr const char* storesPath = "QSTORES_PATH";
inline constexpr const char* httpProxy = "plaz.http_proxy"; ///< a parameter, too
/// The server that the parameters' login for board stores was first sent to.
inline constexpr const char* boardServer = "plaz.git_server.board_store";

// A parameter that several rooms ask for.
inline constexpr const char* hub = "plaz.hub";

/// The folder of the hub's, in what is shipped and in a user's data.
inline constexpr const char* productDir = "plaz";
inline constexpr const char* configFile = "plaz_config.json";
/// The branch that stands in where none is named, or where the remote lacks the one that is.
inline constexpr const char* mainBranch = "master";

} // namespace HSCPlazName
