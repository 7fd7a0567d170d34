#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

class HSCPlazPathMgr;

/// The directory of a store.
struct HSCPlazPlace {
    std::string store; ///< empty: the hub itself
    std::string directory;
};

/// Whose the places on this machine are. The one rule for all of them: no store's area is, holds or lies in that of
/// another, or what the hub keeps for itself; links are resolved, and letter case is what the disk makes of it. Who
/// claims a place first has it.
class HSCPlazPlaceClaims {
public:
    /// The hub's own places are claimed from the start.
    explicit HSCPlazPlaceClaims(const HSCPlazPathMgr& paths);

    /// @param dir  empty: nothing is claimed
    void add(const std::string& store, const std::string& dir);
    /// Another's place that a store's directory would meet, claimed before the store has claimed that directory.
    std::optional<HSCPlazPlace> findOwner(const std::string& store, const std::string& dir) const;
    /// Another's place in a store's area that a file or folder there would meet.
    std::optional<HSCPlazPlace> findMet(const HSCPlazPlace& area, const std::string& path) const;

    /// Whether one is the other, or lies in it.
    static bool meet(const std::string& a, const std::string& b);

private:
    struct Claim {
        HSCPlazPlace place;
        std::string realName;
    };
    std::string realNameOf(const std::string& dir) const;

    std::vector<Claim> m_claims;
    mutable std::map<std::string, std::string> m_realParents; // most places lie in one folder
};
