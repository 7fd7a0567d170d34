#pragma once

#include "Categories.h"
#include "Finding.h"
#include "HubQueries.h"

#include "plaz/HSCPlazPathsInForce.h"
#include "plaz/model/HSCPlazHistoryEntry.h"
#include "plaz/model/reader/HSCPlazFileCheck.h"
#include "plaz/tasks/HSCPlazTaskResult.h"
#include "support/ComMsgMgr.h"

#include <string>
#include <vector>

class HPAParam;
struct HSCPlazPlannedStep;
struct HubInForce;
struct ItemReason;

/// Where the results of a command go. One command calls one of the first group at most, then finish().
class Output {
public:
    virtual ~Output() = default;

    virtual void showStores(const std::vector<HSCPlazQStore*>& stores) = 0;
    virtual void showItems(const std::vector<ListedItem>& items) = 0;
    virtual void showCategories(const std::vector<ListedCategory>& categories) = 0;
    virtual void showItem(const ItemInfo& info) = 0;
    virtual void showActions(const std::vector<HSCPlazItemResult>& results) = 0;
    virtual void showPlan(const std::vector<HSCPlazPlannedStep>& steps) = 0;
    virtual void showReason(const ItemReason& reason) = 0;
    virtual void showFiles(const std::vector<HSCPlazFilesResult>& results) = 0;
    virtual void showStoreResults(const std::vector<HSCPlazStoreResult>& results) = 0;
    virtual void showHistory(const std::vector<HSCPlazHistoryEntry>& entries) = 0;
    virtual void showPaths(const std::vector<HSCPlazPathsInForce::Path>& hub,
                           const std::vector<HSCPlazPathsInForce::StorePaths>& stores) = 0;
    virtual void showParams(const std::vector<const HPAParam*>& params) = 0;
    virtual void showHub(const HubInForce& hub) = 0;
    /// A parameter that was set or taken back, of which a message has told.
    virtual void showSetting(const HPAParam& param) = 0;
    virtual void showFindings(const std::vector<Finding>& findings) = 0;
    virtual void showChecks(const std::vector<HSCPlazFileCheck>& checks) = 0;
    /// Help ("help") or version ("version").
    virtual void showText(const std::string& kind, const std::string& text) = 0;

    /// Ends the output.
    /// @param error     why the command failed; empty when it did not
    /// @param messages  what was sent meanwhile
    /// @return false when the results could not be written
    virtual bool finish(const std::string& error, const std::vector<ComMsgMgr::Message>& messages) = 0;
};
