#pragma once

#include <string>
#include <vector>

class HSCPlaz;

/// A directory or file in force, and what chose it.
struct PathInForce {
    std::string name;   ///< what it is: "user area"
    std::string path;   ///< empty when there is none
    std::string chosen; ///< the variable, preference or rule that chose it, or why there is none
    bool exists;
};

/// Where one store keeps what.
struct StorePaths {
    std::string store;
    std::vector<PathInForce> paths;
};

/// Every directory and file that the hub and its host use.
std::vector<PathInForce> findHubPaths();
/// The same of every store of the hub.
std::vector<StorePaths> findStorePaths(const HSCPlaz& hub);
