#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitOutcome.h"
#include "plaz/model/repo/git/HSCPlazGitStore.h"

#include <string>
#include <vector>

class HSCPlazCfgModel;
class HSCPlazModel;

/// Fetches the files that make up catalogs into the staging directory, for the caller to read and to remove. On failure
/// nothing is left there.
namespace HSCPlazGitCatalog {

/// Puts files of a store, at the head of its branch, into its staging directory. Where the remote has no such branch
/// (any more) the head of "master" stands in; where none is named, also the only one that there is.
/// @param files  repository-relative; none is no success
HSCPlazGitOutcome loadFiles(const HSCPlazGitStore& store, const std::vector<std::string>& files);
/// The same of the hub's own repository, into @p staging.
/// @param config  who has credentials for what; null for none
HSCPlazGitOutcome loadHubFiles(const HSCPlazModel& hub, const std::string& staging,
                               const std::vector<std::string>& files, const HSCPlazCfgModel* config);
/// The same of every item's metadata file and change log.
/// @return done also when there is nothing to fetch: a store that is not for the running product, or without items
HSCPlazGitOutcome loadItemFiles(const HSCPlazGitStore& store);

/// Makes @p staging afresh: a working copy of the hub's own repository, nothing checked out. On failure it may hold a
/// part of one.
/// @return false without git access (Msg::gitAccessOff), or when @p staging cannot be written (dirNotWritable)
bool cloneHub(const std::string& root, const std::string& staging, const std::string& url,
              const HSCPlazGitCredentials& credentials, HSCPlazReport& report);

} // namespace HSCPlazGitCatalog
