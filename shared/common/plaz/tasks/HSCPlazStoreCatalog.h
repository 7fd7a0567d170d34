#pragma once

#include "plaz/model/repo/git/HSCPlazGitOutcome.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

class HSCPlaz;
class HSCPlazQStoreModel;
class HSCPlazTask;
struct HSCPlazWorkspace;

/// What the refreshes of a store and of the hub share.
namespace HSCPlazStoreCatalog {

/// Whether there is a repository to fetch from, noted in the debug log.
bool hasRepository(const char* operation);

/// Takes an operation of the repository for done or failed, and tells what it has to tell. What it throws beyond that
/// is told, too.
bool settle(HSCPlazTask& task, const std::function<HSCPlazGitOutcome()>& operation);

/// Fetches a store's metadata file and the item catalog that it names into the store's staging directory, which the
/// caller removes. Where the metadata names another branch than the one known until now, the store follows it.
/// @return the two files, the catalog first; empty where they have not come, or on cancellation
/// @throws HEXAll as fetch
std::optional<std::vector<std::string>> stage(HSCPlazTask& task, HSCPlazQStoreModel& store);

/// The same into the store's area. What was there stays until
/// everything has come and is whole.
/// @throws HEXAll Msg::storeFileInvalid, catalogFileInvalid when what was fetched is not whole
bool fetch(HSCPlazTask& task, HSCPlazQStoreModel& store);

/// @throws HEXAll Msg::storeFileInvalid where the metadata file that a refresh has brought is not whole
void requireMetadata(HSCPlazTask& task, const HSCPlazQStoreModel& store);

/// A store of which something is installed.
struct Holding {
    std::string store;
    std::string area;
};
bool holdsSomething(const HSCPlazQStoreModel& store);
std::vector<Holding> findHoldings(const HSCPlazTask& task);
/// Tells of stores that are gone, or serve this product no longer, and leave something behind (Msg::storeWithdrawn).
void tellWithdrawn(HSCPlazTask& task, const std::vector<Holding>& before);

/// The store's display name, or its name where it has none.
const std::string& shownName(const HSCPlazQStoreModel& store);

} // namespace HSCPlazStoreCatalog
