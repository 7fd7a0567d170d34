#pragma once

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/repo/git/HSCPlazGitStore.h"
#include "plaz/pref/HSCPlazConfigMgr.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/pref/HSCPlazUserPref.h"
#include "plaz/store/HSCPlazHeldItems.h"
#include "plaz/store/HSCPlazHistory.h"
#include "plaz/store/HSCPlazLocalDBMgr.h"
#include "plaz/store/HSCPlazOwnStores.h"
#include "plaz/store/HSCPlazRepoInfoMgr.h"

#include <memory>

class HSCPlazQStore;

/// What one running hub consists of: its metadata, the objects built from it, and what is known of this machine. The
/// manager owns the one of the process; rooms and tasks are given it. Belongs to one thread at a time.
struct HSCPlazWorkspace {
    /// Reads the configuration; the hub is empty until HSCPlazHubBuilder has built it.
    HSCPlazWorkspace();
    ~HSCPlazWorkspace();
    HSCPlazWorkspace(const HSCPlazWorkspace&) = delete;
    HSCPlazWorkspace& operator=(const HSCPlazWorkspace&) = delete;

    /// The store that is selected; null when it is none of the hub's any more.
    HSCPlazQStore* findCurrentStore() const;
    /// Where the store's repository, its working copy and its staging directory are.
    HSCPlazGitStore gitStore(const HSCPlazQStoreModel& store) const;

    /// A file that tells what is installed of the hub's stores, or of one, and could not be read when that was tried
    /// last; empty when there is none.
    /// @param only  null for all
    std::string findUnreadableRecord(const HSCPlaz& stores, const HSCPlazQStore* only) const;

    HSCPlazUserPref userPref;
    HSCPlazPathMgr paths;
    HSCPlazLocalDBMgr databases;
    HSCPlazConfigMgr config;
    HSCPlazRepoInfoMgr places;
    HSCPlazHeldItems held;
    HSCPlazHistory history;
    /// What is shipped: a second reading of the hub metadata, or the same store models where nothing else was read.
    std::unique_ptr<HSCPlazModel> sharedHubModel;
    std::unique_ptr<HSCPlazModel> hubModel; ///< null until the first start-up
    std::unique_ptr<HSCPlaz> hub;           ///< refers to the hub model
    HSCPlazOwnStores::Added ownStores;      ///< the user's, beside the hub's
    bool isHubRead = false;                 ///< else nobody knows which stores it lists
    /// The store that the user interface has selected; ask findCurrentStore().
    HSCPlazQStore* currentStore = nullptr;
};
