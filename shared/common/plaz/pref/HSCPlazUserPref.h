#pragma once

#include "plaz/base/PlazExport.h"

#include <boost/filesystem/path.hpp>

#include <string>

class HSCPlazQStore;
class HSCPlazQStoreModel;

/// Decides where what the hub keeps per user lives. Holds nothing: every answer is computed afresh from environment,
/// preferences, parameters and the names that the hub and its stores hold.
///
///     <app-data>/<version>/plaz/<store root>         a store without a local root directory: its area
///     <local root>                                   a store with one: the same
///
/// HSCPlazStoreLayout draws what lies in an area.
class PLAZ_API HSCPlazUserPref {
public:
    /// The directory that "ZENTOR_PLAZ_USER_REPO_PATH" names, else <app-data>/<version>/plaz. Never created here.
    /// @throws HEXAll Msg::userRepoPathMissing when the variable names a directory that does not exist
    boost::filesystem::path getUserRepoPath() const;
    /// A store's own area: its local root directory, else its folder below the user repository root.
    /// Empty for null. @throws as above
    boost::filesystem::path getUserRepoPath(const HSCPlazQStore* store) const;
    boost::filesystem::path getUserRepoPath(const HSCPlazQStoreModel* store) const;
    /// <app-data>/<version>/.staging/<hub root>, created when it is missing.
    /// @throws boost::filesystem::filesystem_error when it cannot be created
    boost::filesystem::path getStagingPath() const;
    /// ".staging" below the store's local root directory, else its folder below the staging root. Empty for null.
    boost::filesystem::path getStagedRepoPath(const HSCPlazQStore* store) const;
    /// "boards" below the area of the store named "board"; empty for any other.
    boost::filesystem::path getBoardRepoPaths(const HSCPlazQStore* store) const;
    /// Shipped data of the store of that name; empty when the hub has no such store.
    boost::filesystem::path getDataPath(const std::string& storeName) const;
    struct HubLocation {
        std::string url;
        std::string chooser; ///< for people: "parameter plaz.hub"
    };
    /// Where the hub's own repository lives: at the hub that the user has chosen (the parameter "plaz.hub"; where that
    /// is only kept, "ZENTOR_PLAZ_REMOTE_REPO_PATH" goes before it), else at the configured URL, else where the
    /// variable says. Empty where none of them does.
    HubLocation findHubLocation() const;
    /// The same. @throws HEXAll Msg::remoteRepoPathUnset when none says
    std::string getPlazRemoteRepoPath() const;
    /// The parameter "plaz.enableGitAccess"; true when it is not registered.
    bool hasGitAccess() const;
    /// True exactly for "board".
    bool useLocalStore(const std::string& storeName) const;
    /// Copies a file, or what a directory holds except ".git" and ".done", over @p dest.
    /// A directory is never copied onto itself. @return false when something could not be copied
    bool copySrcToDest(const std::string& src, const std::string& dest) const;
};
