#pragma once

#include "plaz/store/HSCPlazDependencies.h"

#include <string>
#include <vector>

class HSCPlazQItemModel;
class HSCPlazTask;
struct HSCPlazWorkspace;

/// What the item tasks do with files: where they are, whether they are there, how new ones come.
namespace HSCPlazItemFiles {

/// The item's display name, or its name where it has none.
std::string shownName(const HSCPlazQItem& item);
/// "boards::aurora@2.0"; without "@" where it has no revision.
std::string referenceOf(const HSCPlazQItem& item);
/// Who needs an installed item, for people: "boards::aurora@2.0, tools::kit". Empty when nobody does.
std::string joinHolders(const HSCPlaz& hub, const HSCPlazQItem& item);
/// Tells that an item is not installed completely (Msg::itemInstallFailed), or would not be (Msg::itemNotPlanned).
/// @return false
bool failInstallation(HSCPlazTask& task, const HSCPlazQItem& item);
/// Where the item is, or is to be, installed; empty where its names may not be used.
std::string directoryOf(const HSCPlazWorkspace& workspace, const HSCPlazFoundItem& found);

/// Fails with Msg::linkLeadsOut where a link on the way to an item's folder leads out of its store's area.
bool requireReachable(HSCPlazTask& task, const HSCPlazFoundItem& found);

/// Fails with Msg::itemOverlaps where an item's files and those of another one would lie in one another.
/// @param dir  where they are to be
bool requireFree(HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir);

/// Other revisions whose place an item takes: those in its folder, and in a store that keeps one all, unless its own
/// files come back.
/// @param record  commit and local directory of what comes
std::vector<HSCPlazQItem*> findReplaced(const HSCPlazFoundItem& found, const HSCPlazQItemModel& record);

/// In memory: they are installed no more. One in a folder of its own goes at the end of the task, since nobody needs
/// it.
void giveWay(const HSCPlazTask& task, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record);

/// Whether files of an item that no record knows, left by an earlier installation or put there by hand, are this very
/// item and lack nothing of what its commit lists. Where that is not known, they count only if remote access is
/// switched off.
/// @param record  commit and local directory of what is to be installed
bool areLeft(HSCPlazTask& task, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record);
/// The same; what the commit lists is kept.
bool takeOver(HSCPlazTask& task, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record);
/// Has the repository fetch the item's files into the store's incoming directory, and keeps the tree that they are of.
/// In a store where what is there is part of the item's folder, such as its revisions, that is put beside them.
/// @param record      the commit to fetch, and the directory that they are for
/// @param isAskedFor  the user asked for the item itself, so that the start is told (Msg::itemInstalling)
/// @param isLocal     what was installed before comes back, out of the working copy, whatever the catalog says of it
/// @return false when that failed; the reason has been told
bool fetch(HSCPlazTask& task, const HSCPlazFoundItem& found, const HSCPlazQItemModel& record, bool isAskedFor,
           bool isLocal = false);
/// Puts files of the item's folder into the incoming directory, in the place of those that have come.
/// @return false when that failed; the reason has been told
bool takeAlong(HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir,
               const std::vector<std::string>& files);
/// What stays of an item that goes, relative to its folder: its metadata file, so that the catalog goes on describing
/// it, and what of others lies there.
std::vector<std::string> findRemains(const HSCPlazFoundItem& found, const std::string& dir);
/// Makes that in the store's incoming directory.
/// @return false when that could not be written
bool makeRemains(HSCPlazTask& task, const HSCPlazFoundItem& found, const std::string& dir);
/// Describes an installed item by its own files.
void describe(HSCPlazTask& task, const HSCPlazFoundItem& found);

/// Where the item's files are, if that is a place that may be emptied: below the store's area, whatever the database
/// says, and the item's own directory, or at least one that holds its metadata file or where an installation has put
/// it. Empty where it is not.
std::string removableDirectory(const HSCPlazTask& task, const HSCPlazFoundItem& found);

} // namespace HSCPlazItemFiles
