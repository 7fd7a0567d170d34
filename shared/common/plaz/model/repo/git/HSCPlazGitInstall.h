#pragma once

#include "plaz/model/repo/git/HSCPlazGitOutcome.h"
#include "plaz/model/repo/git/HSCPlazGitStore.h"

#include <string>
#include <vector>

class HSCPlazQItemModel;

/// Places single items at the commit recorded for them.
namespace HSCPlazGitInstall {

struct Place {
    std::string directory; ///< where the item goes; empty where its names lead out of the store's area: it is refused
    std::string incoming;  ///< for its files on their way there, on the same disk
    /// Out of the working copy as it is, whether remote access is on or off (see provide()).
    bool isLocal = false;
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

/// Sees to it that a store's working copy has the commits of items, and fetches only where it lacks one.
/// @return not done where it still does: Msg::remoteAccessOff, commitGone, or what git says
HSCPlazGitOutcome provide(const HSCPlazGitStore& store, const std::vector<const HSCPlazQItemModel*>& items);
/// Checks the item out in a fresh copy of its store's working copy, and leaves its files, checked, in the incoming
/// directory. A working copy that is complete is used as it stands; it is fetched only when it lacks the commit.
/// @return not done, with what was installed untouched: Msg::remoteAccessOff, commitIdMissing, commitGone (in the
///         remote, too), itemRefused, storeRefused, dirNotWritable, and ended by Msg::fetchedItemInvalid when the
///         fetched metadata file cannot be trusted, Msg::gitFailed (contentMissing) when git has left out a file
Fetched fetch(const HSCPlazGitStore& store, const HSCPlazQItemModel& item, const Place& place);
/// The same, and puts the files into their place, in one step, so that an interruption leaves the old ones or the new
/// ones.
HSCPlazGitOutcome install(const HSCPlazGitStore& store, const HSCPlazQItemModel& item, const Place& place);

} // namespace HSCPlazGitInstall
