#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/model/repo/git/HSCPlazGitStore.h"

#include <string>
#include <vector>

/// A store's long-lived working copy (HSCPlazStoreLayout::getIndex) and the fresh copies of it in which checkouts are
/// made (getStaging).
///
/// After a crash: a working copy without ".done" is made afresh by the next run, one with it is rid of the lock files
/// and half-received packs that a killed git leaves.
///
/// RATIONALE: a checkout happens in a fresh copy, so that no local branch or leftover file of an earlier one can decide
/// what is found there. The copy is cheap, because git never changes an object in place and objects are linked.
namespace HSCPlazGitWorkingCopy {

/// What becomes of a complete working copy of the right URL before it is copied.
enum class Use {
    asItIs,
    fetched,  ///< through the proxies that it records
    refreshed ///< through those that are in force now, which it records from then on
};

/// Makes the staging directory a copy of the working copy, which is created, made afresh (another URL, never completed,
/// not this user's own work) or used as @p use says first. Of a store without a remote it is taken as it is, while it
/// is complete.
/// @param report     Msg::storeRefused for a URL that git is not given, dirNotWritable, gitAccessOff,
/// credentialsMissing, workingCopyDiscarded or, where it cannot be made afresh, workingCopyRefused; linkInPlace
/// @return false leaves no staging directory
/// @throws HEXAll as HSCPlazGitRunner::run
bool stage(const HSCPlazGitStore& store, Use use, HSCPlazReport& report);
/// Removes the working copy when its objects do not hold together, as after a failing disk, so that the next use makes
/// it afresh. Slow: to be asked only when something has failed.
void discardDamaged(const HSCPlazWorkLayout& layout);
/// The arguments of the command that tells whether a working copy holds together.
const std::vector<std::string>& integrityCheck();

} // namespace HSCPlazGitWorkingCopy
