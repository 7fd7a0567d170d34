#pragma once

#include "support/HostExport.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

/// A set of preferences: names with a list of texts each.
class HOST_API HCCXPref {
public:
    /// The list of @p name; empty when it is not set.
    std::vector<std::string> getVal(const std::string& name) const;
    /// Replaces the list of @p name; an empty one takes the name away. It reaches the disk with
    /// HCCXPrefUtils::savePreferences.
    void setVal(const std::string& name, const std::vector<std::string>& values);
    /// Every name that is set, in the order in which it was first set.
    std::vector<std::string> getNames() const;

    /// Sets what the content of a preferences file says. @return what is wrong with it, and nothing is set then; empty
    /// when all is well
    std::string fillFrom(std::string text);
    /// The set as the content of a preferences file.
    std::string toText() const;

private:
    friend class HCCXPrefUtils;
    /// Takes over what @p saved holds of all names that were not set here since the last save.
    void takeOver(const HCCXPref& saved);
    void assign(const std::string& name, const std::vector<std::string>& values);

    std::set<std::string> m_changed;
    std::vector<std::pair<std::string, std::vector<std::string>>> m_values;
};

/// Holds the user's preferences, read on first use from "preferences.json" in the per-user area.
/// A file that cannot be read or parsed is reported once and never overwritten silently: the first save keeps it
/// beside the new one as "preferences.json.bad".
class HOST_API HCCXPrefMgr {
public:
    static HCCXPrefMgr& getInstance();
    /// The user's own set.
    HCCXPref& getDefaultXPref();
    /// The file that holds the preferences.
    static std::string getFile();

private:
    HCCXPrefMgr();
    HCCXPref m_default;
};

class HOST_API HCCXPrefUtils {
public:
    /// Writes the preferences whole and atomically, with what other processes have saved meanwhile. @return false, with
    /// a message and the old file in its place, when that failed or a text among them is no UTF-8
    static bool savePreferences();
};
