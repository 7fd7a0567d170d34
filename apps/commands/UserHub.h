#pragma once

#include <string>
#include <vector>

class HSCPlaz;
class HSCPlazQStore;

/// Which hub is in force, for people: addresses are shown without secrets.
struct HubInForce {
    std::string url;      ///< where it is fetched from; empty where that is not known
    std::string chooser;  ///< "parameter plaz.hub"
    std::string metadata; ///< the file that says which stores it has
    bool isRefreshed;     ///< it was fetched, rather than shipped
    std::vector<HSCPlazQStore*> stores;
    std::vector<std::string> hidden; ///< the user's own that the hub's of the same names keep from being used

    static HubInForce of(const HSCPlaz& hub);
    /// "hub", "yours", or "nobody" for a store of which there is but what is installed.
    static const char* ownerOf(const HSCPlazQStore& store);
};
