#pragma once

#include "plaz/base/PlazExport.h"

#include <string>

/// The design tool in whose process the hub runs, and the rules that differ from one to another. The main tool is
/// known by its name in any case, others by their very names. Computed afresh at each call.
namespace HSCPlazProduct {

/// Name, and version in the form used in paths: "2024.2" for 2024.2.0, "2024.2.1" as it is.
struct PLAZ_API Identity {
    std::string name;
    std::string version;

    bool operator==(const Identity& other) const { return name == other.name && version == other.version; }
};

/// With the parameter "misc.enablePlazBoardStore" of the host on, what is empty comes from "plaz.product_name" and
/// "plaz.product_version", else it is Solvan 2018.3. Written to the debug log.
PLAZ_API Identity get();

/// Where the host keeps a user's data for this version of the product: <app-data>/<version>, without the version where
/// there is none.
PLAZ_API std::string getUserDataDir();
/// Who says through which proxy repositories are reached.
enum class ProxySource { parameters, preference, nobody };
PLAZ_API ProxySource getProxySource();
/// git and the program that detects proxies come with the product itself, else with the main tool's installation.
PLAZ_API bool bringsTools();
/// The hub's catalog is kept in the user area's database.
bool keepsCatalogInDatabase();
/// Stores that are not for the product may be moved, too.
bool mayMoveEveryStore();

} // namespace HSCPlazProduct
