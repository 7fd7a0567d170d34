#pragma once

#include "Colours.h"
#include "Output.h"

#include <iosfwd>

class TextTable;

/// Results as text for people.
class TextOutput : public Output {
public:
    /// @param out    where results go; must outlive the object
    /// @param quiet  leaves out what install, uninstall and update did
    TextOutput(std::ostream& out, bool quiet, const Colours& colours)
        : m_out(out), m_quiet(quiet), m_colours(colours) {}

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
    void showChanges(const HSCPlazStoreResult& result);
    void showPathList(const std::vector<HSCPlazPathsInForce::Path>& paths);
    /// A table whose rows begin with an outcome or a state.
    void printPainted(const TextTable& table);
    void showDescription(const ItemInfo& info);
    void showRelations(const ItemInfo& info);
    void showRevisions(const HSCPlazQItem& item);

    std::ostream& m_out;
    bool m_quiet;
    Colours m_colours;
};
