#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/base/HSCPlazStoreLayout.h"

#include <string>

class HSCPlaz;
class HSCPlazCfgModel;
class HSCPlazQStoreModel;

/// Where one store's repository is: in the world and on this machine. A value, made for one operation.
struct HSCPlazGitStore {
    const HSCPlazQStoreModel& model; ///< must outlive the value
    HSCPlazWorkLayout layout;
    std::string url;       ///< without our credentials: its own, or for a store of type "board" what is set for those
    std::string access;    ///< the same with the store's credentials: what a working copy records
    bool hasCredentials;   ///< user id or token are known
    HSCPlazReport refusal; ///< why the store gets other ones than its type would give it, or none

    /// Not for a store that the hub has left out: its working copy is all that there is of it.
    bool hasRemote() const { return !url.empty(); }

    /// @param config  who has credentials for what; null for none
    static HSCPlazGitStore of(const HSCPlazQStoreModel& model, HSCPlazWorkLayout layout, const HSCPlazCfgModel* config);
    /// What is really asked at a URL, with credentials: which store of the hub has it decides on both.
    /// @param hub, config  null for none
    static std::string findAccess(const std::string& url, const HSCPlaz* hub, const HSCPlazCfgModel* config);
};
