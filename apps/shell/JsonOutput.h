#pragma once

#include "Output.h"

#include <rapidjson/document.h>

#include <iosfwd>

/// Results as one JSON document: an object with "ok", the results under a name of their own, "error" for a failure and
/// "messages". Members are named as in the metadata files where those have them.
class JsonOutput : public Output {
public:
    /// @param out  where the document goes when it is finished; must outlive the object
    explicit JsonOutput(std::ostream& out);

    void showStores(const std::vector<HSCPlazQStore*>& stores) override;
    void showItems(const std::vector<ListedItem>& items) override;
    void showCategories(const std::vector<ListedCategory>& categories) override;
    void showItem(const ItemInfo& info) override;
    void showActions(const std::vector<HSCPlazItemResult>& results) override;
    void showPlan(const std::vector<HSCPlazPlannedStep>& steps) override;
    void showReason(const ItemReason& reason) override;
    void showFiles(const std::vector<HSCPlazFilesResult>& results) override;
    void showStoreResults(const std::vector<HSCPlazStoreResult>& results) override;
    void showHistory(const std::vector<HSCPlazHistoryEntry>& entries) override;
    void showPaths(const std::vector<HSCPlazPathsInForce::Path>& hub,
                   const std::vector<HSCPlazPathsInForce::StorePaths>& stores) override;
    void showParams(const std::vector<const HPAParam*>& params) override;
    void showHub(const HubInForce& hub) override;
    void showSetting(const HPAParam& param) override;
    void showFindings(const std::vector<Finding>& findings) override;
    void showChecks(const std::vector<HSCPlazFileCheck>& checks) override;
    void showText(const std::string& kind, const std::string& text) override;
    bool finish(const std::string& error, const std::vector<ComMsgMgr::Message>& messages) override;

private:
    std::ostream& m_out;
    rapidjson::Document m_document;
};
