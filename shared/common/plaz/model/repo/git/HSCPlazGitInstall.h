#pragma once

#include "plaz/model/repo/git/HSCPlazGitOutcome.h"
#include "plaz/model/repo/git/HSCPlazGitStore.h"

#include <string>

class HSCPlazQItemModel;

/// Places single items at the commit recorded for them.
namespace HSCPlazGitInstall {

struct Place {
    std::string directory; ///< where the item goes; empty where its names lead out of the store's area: it is refused
    std::string incoming;  ///< for its files on their way there, on the same disk
};

/// What came of a fetch.
struct Fetched {
    HSCPlazGitOutcome outcome;
    /// All files of the item's folder at the commit, as HSCPlazGitTree::list() gives them; empty where the checkout has
    /// not told, so that one has to ask.
    std::string listing;
};

/// What can be said before anything is done: remote access is off, or no commit is known.
HSCPlazGitOutcome check(const HSCPlazQItemModel& item);

/// Checks the item out in a fresh copy of its store's working copy, and leaves its files, checked, in the incoming
/// directory. A working copy that is complete is used as it stands; it is fetched only when it lacks the commit.
/// @return not done, with what was installed untouched: Msg::remoteAccessOff, commitIdMissing, commitGone (in the
///         remote, too), itemRefused, storeRefused, dirNotWritable, and ended by Msg::fetchedItemInvalid when the
///         fetched metadata file cannot be trusted
Fetched fetch(const HSCPlazGitStore& store, const HSCPlazQItemModel& item, const Place& place);
/// The same, and puts the files into their place, in one step, so that an interruption leaves the old ones or the new
/// ones.
HSCPlazGitOutcome install(const HSCPlazGitStore& store, const HSCPlazQItemModel& item, const Place& place);

} // namespace HSCPlazGitInstall
