#pragma once

#include "Finding.h"

#include "plaz/HSCPlazPathsInForce.h"

#include <string>
#include <vector>

class HDGUIStatus;
class HSCPlaz;
class HSCPlazQStore;
class HSCPlazQStoreModel;

/// The checks of which Doctor is made: each looks at one thing.
namespace doctor {

inline Finding ok(const std::string& subject, const std::string& found) {
    return {Finding::State::ok, subject, found, {}, {}};
}
inline Finding warning(const std::string& subject, const std::string& found, const std::string& advice) {
    return {Finding::State::warning, subject, found, advice, {}};
}
inline Finding problem(const std::string& subject, const std::string& found, const std::string& advice) {
    return {Finding::State::problem, subject, found, advice, {}};
}

/// A working copy as a refresh would set it up, empty, in the system's temporary directory; gone with the object.
class TrialCopy {
public:
    TrialCopy();
    ~TrialCopy();
    TrialCopy(const TrialCopy&) = delete;
    TrialCopy& operator=(const TrialCopy&) = delete;
    const std::string& getDir() const { return m_dir; }

private:
    std::string m_dir;
};

/// Whether git can be used.
Finding checkGit(const HSCPlazPathsInForce::Path& git);
/// @param bundle  the certificates that come with git
Finding checkCertificates(const HSCPlazPathsInForce::Path& bundle);
/// What git connects through. @param trial  directory of a working copy as a refresh would set it up
Finding checkProxy(const std::string& trial);
/// What the parameters were set to, and by what; a finding for each preference that nothing goes by.
std::vector<Finding> checkSettings();
/// The parameters that switch things off: one finding for each that does, or one that tells that none does.
std::vector<Finding> checkSwitches();

/// Whether each directory is there and can be used as it is meant, and how much room it has. Of several that the same
/// obstacle keeps from being written the first is told.
std::vector<Finding> checkDirectories(const std::vector<HSCPlazPathsInForce::Path>& hub,
                                      const std::vector<HSCPlazPathsInForce::StorePaths>& stores);
/// What the disk of the user area refuses to do for the hub; no finding before anything has been done there.
std::vector<Finding> checkDisk(const HSCPlazPathsInForce::Path& userArea);
/// What is wrong with a metadata file; empty for nothing. That its schema is not there is not the file's fault.
std::string findDamage(const std::string& file);
/// The hub's metadata in force: shipped or refreshed.
Finding checkHubMetadata();
/// Of a hub without stores.
Finding tellEmptyHub();
/// The stores that the user has added; no finding where there are none.
std::vector<Finding> checkOwnStores();
Finding checkConfiguration();
/// What tells where stores are kept; no finding where that was never written.
std::vector<Finding> checkPlaces();

/// Metadata and catalog in force, and how old they are.
Finding checkCatalog(HSCPlazQStore& store);
/// What is recorded as installed.
Finding checkDatabase(const HSCPlazQStore& store);
/// Whether each installed item has its files as they were installed. Ends on cancellation.
std::vector<Finding> checkItems(const HSCPlazQStore& store, const HDGUIStatus& status);
/// Installed items that lack something that they need; no finding where none does.
std::vector<Finding> checkNeeds(const HSCPlaz& hub, const HSCPlazQStore& store);
/// @param trial  as for checkProxy(); empty where there is no git to look with
Finding checkWorkingCopy(const HSCPlazQStoreModel& store, const std::string& trial);
/// Whether a private store can be reached at all.
Finding checkCredentials(const HSCPlazQStoreModel& store);

/// The proxies that git would use in a working copy, "http.proxy=..." each; empty when it connects directly.
std::string getProxies(const std::string& dir);
/// Asks a remote. @param branch  what is followed there; empty: master, or the only branch that there is
Finding checkRemote(const std::string& subject, const std::string& url, const std::string& branch,
                    const std::string& trial);

} // namespace doctor
