#pragma once

#include "Failure.h"

#include "plaz/model/HSCPlazHistoryEntry.h"
#include "plaz/tasks/HSCPlazPlan.h"
#include "plaz/tasks/HSCPlazTaskOptions.h"
#include "plaz/tasks/HSCPlazTaskResult.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class HDGUIStatus;
class HSCPlaz;
class HSCPlazQItem;
class HSCPlazQStore;

/// Told before each part of a command: its number from 1, and how many there are.
using BeginPart = std::function<void(std::size_t number, std::size_t count)>;

/// What became of a command, part by part.
template <typename Result> struct CommandResult {
    std::vector<Result> parts; ///< in the order in which they were named; fewer of them after a cancellation
    bool isDone;               ///< all that was asked for
    /// Why not, with who needs what was not removed; nothing where all is well, and after a cancellation before
    /// anything failed.
    std::optional<ExplainedFailure> reason;
};
using ItemsResult = CommandResult<HSCPlazItemResult>;
using FilesResult = CommandResult<HSCPlazFilesResult>;
using StoresResult = CommandResult<HSCPlazStoreResult>;
/// The steps of what would be done; isDone where nothing is known that would keep it from being done.
using PlanResult = CommandResult<HSCPlazPlannedStep>;

/// Who needs an item that was not removed, for front ends that show no neededBy; nothing where nobody does.
std::optional<ComMsgMgrInstance> describeNeed(const HSCPlazItemResult& result);

/// Adds what is not among them yet: commands take each thing once.
template <typename Native> void addOnce(std::vector<Native*>& natives, Native& native) {
    if (std::find(natives.begin(), natives.end(), &native) == natives.end()) natives.push_back(&native);
}

/// The commands that change what is installed and what is known of the stores. What fails does not stop the parts
/// behind it; a cancellation does. Everything is sent by the tasks; the results tell it again for the answer of a front
/// end. Items and stores are given once each. One command at a time, on the caller's thread.
class HubActions {
public:
    /// @param status   progress and cancellation
    /// @param begin    may be empty. All that is referred to must outlive the object.
    HubActions(HSCPlaz& hub, HDGUIStatus& status, HSCPlazTaskOptions options, BeginPart begin = {})
        : m_hub(hub), m_status(status), m_options(options), m_begin(std::move(begin)) {}

    /// install(), uninstall() or update().
    using Change = ItemsResult (HubActions::*)(const std::vector<HSCPlazQItem*>&) const;
    /// What it would do to these items. Changes nothing, asks no remote and waits for nobody.
    PlanResult plan(Change change, const std::vector<HSCPlazQItem*>& items) const;
    /// What keeps an item from being installed; nothing where it could be, or is installed.
    std::optional<ExplainedFailure> findObstacle(HSCPlazQItem& item) const;

    ItemsResult install(const std::vector<HSCPlazQItem*>& items) const;
    ItemsResult update(const std::vector<HSCPlazQItem*>& items) const;
    /// Removes them together: what holds others goes first, and an item that went with one of them is removed, too.
    ItemsResult uninstall(const std::vector<HSCPlazQItem*>& items) const;
    /// Has installed items stay in their revision, and lets them change again.
    ItemsResult hold(const std::vector<HSCPlazQItem*>& items) const;
    ItemsResult unhold(const std::vector<HSCPlazRevisionName>& names) const;
    /// Takes back what a command has changed. @param number  of the entry in the history; 0 for the newest
    ItemsResult undo(int number) const;
    /// What it would do; changes and asks as little as plan().
    PlanResult planUndo(int number) const;
    /// Compares the files of installed items with those of their recorded commits. Changes nothing.
    FilesResult verify(const std::vector<HSCPlazQItem*>& items) const;
    /// Brings back what verify() finds changed or missing.
    ItemsResult repair(const std::vector<HSCPlazQItem*>& items) const;

    /// Items of the stores are new objects afterwards.
    StoresResult refresh(const std::vector<HSCPlazQStore*>& stores) const;
    /// What refresh() would change: HSCPlazStoreResult::changes. Objects stay what they are.
    StoresResult planRefresh(const std::vector<HSCPlazQStore*>& stores) const;
    /// The same of refreshHub(), for all stores.
    StoresResult planRefreshHub() const;
    /// Fetches the hub's own metadata first, and with it all catalogs; all objects are new then. A store of which that
    /// failed is among the parts, whether it was named or not.
    /// @param names  of stores; a name may be one that the hub learns of only then. None for all.
    /// @throws HEXAll ShellMsg::storeUnknown, once the hub is fetched
    StoresResult refreshHub(const std::vector<std::string>& names) const;
    /// What chooseHub() takes for the hub that comes with the installation.
    static constexpr const char* sampleHub = "sample";
    /// Has the hub of that URL be the user's from now on, and fetches it as refreshHub() does. Where it cannot be
    /// fetched, the one before stays. Where a variable counts until it is no longer set, that is told (17-2321), and
    /// nothing is fetched.
    /// @throws HEXAll where it may not be used (17-2322) or kept (17-2206)
    StoresResult chooseHub(const std::string& wanted) const;
    /// Has the installation's hub be in force again, as it is shipped.
    /// @throws HEXAll where that cannot be kept (17-2206)
    StoresResult leaveHub() const;
    /// Adds a store of the user's own, and takes one away; all objects are new then.
    StoresResult addStore(const HSCPlazNewStore& wanted) const;
    StoresResult removeStore(const std::string& name) const;
    /// Asks the stores' remotes whether they have moved.
    StoresResult check(const std::vector<HSCPlazQStore*>& stores) const;
    /// Puts the store's area below @p dir. What it holds stays where it is.
    StoresResult relocate(HSCPlazQStore& store, const std::string& dir) const;

private:
    PlanResult plan(const std::function<ItemsResult(const HubActions& planned)>& act) const;
    StoresResult describeAll(const HSCPlazHubResult& hub, const std::vector<std::string>& names) const;
    /// @param subjects  a list of its own: tasks may add stores to the hub
    template <typename Subject, typename Action> auto doEach(std::vector<Subject*> subjects, Action act) const;

    HSCPlaz& m_hub;
    HDGUIStatus& m_status;
    HSCPlazTaskOptions m_options;
    BeginPart m_begin;
};
