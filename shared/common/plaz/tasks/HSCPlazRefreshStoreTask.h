#pragma once

class HSCPlazQStore;
class HSCPlazQStoreModel;
class HSCPlazTask;

/// Refreshes what is known of one store. To be called within a task that runs (HSCPlazTask::run).
namespace HSCPlazRefreshStoreTask {

/// Fails where the hub no longer offers the store, so that nothing of it can be fetched (Msg::storeWithdrawn).
bool requireOffered(HSCPlazTask& task, const HSCPlazQStoreModel& store);
/// Fetches the store's metadata file and item catalog, and rebuilds the store from them. Until both have come and are
/// whole the old catalog stays in force. Items and categories of the store are new objects afterwards.
/// @return false on cancellation and when the fetch failed
/// @throws HEXAll Msg::storeFileInvalid, catalogFileInvalid when what was fetched is not whole
bool fetchCatalog(HSCPlazTask& task, HSCPlazQStore& store);
/// Rebuilds the store from its files on this machine; fetches nothing. Items and categories of the store are new
/// objects afterwards.
/// @return false where the store's directory is away (Msg::placeMissing)
/// @throws HEXAll Msg::storeFileInvalid, with the store as it was, or catalogFileInvalid when what the last refresh has
///         left is not whole
bool loadCatalog(HSCPlazTask& task, HSCPlazQStore& store);
/// Fetches the metadata files and change logs of the store's items.
/// @return true also for a store without items (Msg::storeWithoutCatalogs). An item whose file is not whole keeps what
///         was known of it (Msg::itemCatalogInvalid).
bool describeItems(HSCPlazTask& task, HSCPlazQStore& store);

} // namespace HSCPlazRefreshStoreTask
