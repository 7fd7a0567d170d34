#pragma once

#include <string>

class HSCPlazItemChanges;
class HSCPlazQStore;
class HSCPlazTask;

/// Puts a store's area below a directory of the user's choice, and remembers that. To be called within a task that runs
/// (HSCPlazTask::run).
namespace HSCPlazMoveStoreTask {

/// A directory that holds a database of another product or release is refused; one of this release is read. The catalog
/// that was refreshed comes along; what is installed stays in the old directory (Msg::itemsLeftBehind). What the new
/// one holds from an earlier time, and nobody needs here, counts as the user's.
/// @param dir  absolute
/// @return false, with the store as it was, when the directory cannot be used (Msg::dirNotWritable, dirNotCreated) or
///         the move not be recorded (Msg::placesNotSaved); moved, when what it holds could not be (databaseNotSaved)
bool move(HSCPlazTask& task, HSCPlazItemChanges& changes, HSCPlazQStore& store, const std::string& dir);

} // namespace HSCPlazMoveStoreTask
