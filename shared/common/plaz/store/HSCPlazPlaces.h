#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/store/HSCPlazPlaceClaims.h"

class HSCPlazModel;
class HSCPlazQStoreModel;
struct HSCPlazWorkspace;

/// Decides where each store's own area lies: where the user put it, else in its default place, and nowhere where that
/// is another's. What cannot be read or named is added to a report.
class HSCPlazPlaces {
public:
    /// @param workspace  must outlive the object
    explicit HSCPlazPlaces(HSCPlazWorkspace& workspace) : m_workspace(workspace) {}

    /// The parameter "plaz.enableBoardStoreDefaultLocation": stores have places by default.
    static bool hasDefaultLocations();
    /// The recorded default place of a store; empty when none is recorded.
    std::string getDefaultPlace(const HSCPlazQStoreModel& store) const;
    /// Records the default places of today's stores, so that no other order of the stores moves them.
    /// @return false when they could not be recorded
    bool keepDefaults(HSCPlazReport& report) const;

    /// Gives the stores of another hub model the places that they have, or will have, in this hub, and tells them which
    /// catalog file and branch have been known until now.
    void placeStores(HSCPlazModel& model) const;
    /// Gives a store of this hub that has no area of its own yet the one that is meant for it.
    void placeForRefresh(HSCPlazQStoreModel& store, HSCPlazReport& report) const;
    /// Lets stores that have been refreshed be read from where their catalog is.
    void preferRefreshed(HSCPlazReport& report) const;
    /// The same of one store of this hub, which another process may have refreshed.
    void preferRefreshed(HSCPlazQStoreModel& store, HSCPlazReport& report) const;
    /// Gives the stores that are for the running product, and those that the user has placed, their places.
    void applyDefaults(HSCPlazReport& report) const;
    /// A store that is not for the running product (any more), or whose metadata cannot be read, stays one of its own
    /// as long as the database in its area records items of it.
    void claim(HSCPlazQStoreModel& store, const std::string& dir) const;
    /// Adds the stores that the hub's metadata does not list any more and of which something is installed.
    void addWithdrawn(HSCPlazReport& report) const;
    /// Where a store's area should be and is not, as on a disk that is not mounted: in a directory that was chosen, and
    /// set up then, or behind a link. Empty where it is there, or has not been made yet.
    std::string findMissing(const HSCPlazQStoreModel& store) const;
    /// The same of all stores of which a place is recorded.
    std::vector<HSCPlazPlace> findMissing() const;
    /// False where nobody may write: nothing is recorded there, nor does anything go by itself.
    bool mayChange(const HSCPlazQStoreModel& store) const;
    /// Tells the stores of a hub model, which is this hub's or is to become it, whether their places are another's:
    /// who is recorded, in force or set up there goes before the order of the hub.
    void settle(HSCPlazModel& model) const;
    /// Why nothing may be put into a store's place (Msg::placeTaken, Msg::placeAlwaysTaken); empty where it may.
    HSCPlazReport findRefusal(const HSCPlazQStoreModel& store, MsgSeverity severity) const;
    /// Whose place a directory would meet if a store of this hub were there.
    std::optional<HSCPlazPlace> findOwner(const HSCPlazQStoreModel& store, const std::string& dir) const;
    /// Whose place a file or folder of a store of this hub would meet in the store's area; for people. Empty where it
    /// meets none.
    std::string findMet(const HSCPlazQStoreModel& store, const std::string& path) const;
    /// Puts a store's area there.
    void place(HSCPlazQStoreModel& store, const std::string& dir, HSCPlazReport& report) const;
    /// Puts it beside where it is, since that is used by somebody else.
    void placeBeside(HSCPlazQStoreModel& store, const std::string& ending, HSCPlazReport& report) const;

private:
    /// Of all stores of which a place is recorded.
    std::vector<HSCPlazPlace> findRecorded() const;
    bool isMissing(const HSCPlazPlace& place) const;
    std::string defaultDir(const HSCPlazQStoreModel& store) const;
    std::vector<std::string> defaultDirs(const HSCPlazModel& hubModel) const;
    /// The same, with a place for stores that have none by default.
    std::vector<std::string> refreshDirs(const HSCPlazModel& hubModel) const;
    std::string refreshDir(const HSCPlazQStoreModel& store) const;
    /// Its folder below the user repository root, where it is by no default; empty where that root is none.
    std::string repositoryDir(const HSCPlazQStoreModel& store) const;
    HSCPlazPlaceClaims findClaims(const HSCPlazModel& hubModel, const std::vector<std::string>& dirs) const;
    std::vector<HSCPlazPlace> findSetUp(const HSCPlazModel& hubModel, const std::vector<std::string>& dirs) const;
    bool isRecordedIn(const HSCPlazPlace& place) const;
    bool isKept(const HSCPlazQStoreModel& store, const std::string& dir) const;
    static void leaveOut(HSCPlazQStoreModel& store);
    static void readFrom(const std::string& dir, HSCPlazQStoreModel& store, HSCPlazReport& report);

    HSCPlazWorkspace& m_workspace;
};
