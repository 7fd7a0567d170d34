#pragma once

#include "plaz/base/PlazExport.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

class HSCPlaz;
class HSCPlazQItem;
class HSCPlazQItemModel;

/// One thing that a task would do.
struct PLAZ_API HSCPlazPlannedStep {
    enum class Kind {
        install,
        update,        ///< in the place of another revision, or of the same one at another commit
        takeOver,      ///< its files are there already, and nobody knew of them
        restore,       ///< files that are missing come back
        remove,        ///< its files go
        adopt,         ///< what came for others becomes the user's own
        keepForOthers, ///< what the user asked for stays, for others
        hold,          ///< the user holds it in its revision again
        release        ///< and no more
    };

    Kind kind = Kind::install;
    std::string store = {};
    std::string name = {};
    std::string revision = {}; ///< the one that comes, goes or stays
    std::string commit = {};
    std::string previousRevision = {}; ///< of an update: what it takes the place of
    std::string previousCommit = {};
    std::string formerRevision = {}; ///< of an update: what it comes beside
    bool isAskedFor = false;
    std::string neededBy = {};  ///< for people: "boards::aurora@2.0, tools::kit"; empty where nobody needs it
    std::string directory = {}; ///< where its files are, or will be
    /// Where what comes is fetched from, without secrets; empty for all else.
    std::string url = {};
    /// Bytes of the files that come or go; empty where that would have to be fetched, or is not known.
    std::optional<std::uint64_t> size = {};
    /// What its change log says beyond that of the revision that is installed; empty where none is.
    std::string changes = {};

    /// "install", "update", "take over", "restore", "remove", "adopt", "keep", "hold", "unhold".
    static const char* nameOf(Kind kind);
    /// For people: "asked for", "needed by boards::aurora@2.0", "needed no more".
    std::string describeWhy() const;
    /// Whether its files come.
    bool isComing() const { return kind == Kind::install || kind == Kind::update || kind == Kind::restore; }
};

/// What tasks would do that are given it (HSCPlazTaskOptions::plan), in their order. They change the hub in memory
/// meanwhile, so that each builds on those before it; the end of the plan brings that back. Nothing on disk is touched.
/// Belongs to the hub's thread, and is to end before anything else changes the hub.
class PLAZ_API HSCPlazPlan {
public:
    /// @param hub  must outlive the plan
    explicit HSCPlazPlan(HSCPlaz& hub);
    ~HSCPlazPlan();
    HSCPlazPlan(const HSCPlazPlan&) = delete;
    HSCPlazPlan& operator=(const HSCPlazPlan&) = delete;

    const std::vector<HSCPlazPlannedStep>& getSteps() const { return m_steps; }
    /// Says of an item that is to be installed that it is an update, beside a revision that stays.
    void noteFormer(const HSCPlazQItem& item, const std::string& revision);

private:
    friend class HSCPlazPlannedChanges;
    struct Before;

    /// Keeps how an item is installed before that changes for the first time.
    void keep(HSCPlazQItemModel& item);

    HSCPlaz& m_hub;
    std::vector<HSCPlazPlannedStep> m_steps;
    std::map<HSCPlazQItemModel*, Before> m_before;
    std::set<const HSCPlazQItem*> m_coming;   ///< items whose files are not there yet
    std::set<const HSCPlazQItem*> m_restored; ///< items of whose files some are not there yet
};
