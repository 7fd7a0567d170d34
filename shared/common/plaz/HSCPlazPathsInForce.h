#pragma once

#include "plaz/base/PlazExport.h"

#include <string>
#include <vector>

class HSCPlaz;

/// The directories and files that the hub uses, each with what chose it. Computed afresh at each call.
namespace HSCPlazPathsInForce {

/// A directory or file in force.
struct Path {
    std::string name;   ///< what it is: "user area"
    std::string path;   ///< empty when there is none
    std::string chosen; ///< the variable, preference or rule that chose it, or why there is none
    bool exists;
};

/// Where one store keeps what.
struct StorePaths {
    std::string store;
    std::vector<Path> paths;
};

/// Every directory and file that the hub and its host use.
PLAZ_API std::vector<Path> ofHub();
/// The same of every store of the hub.
PLAZ_API std::vector<StorePaths> ofStores(const HSCPlaz& hub);

} // namespace HSCPlazPathsInForce
