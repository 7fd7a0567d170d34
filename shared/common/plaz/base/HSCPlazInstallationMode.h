#pragma once

#include <string>

/// Why an item is installed.
enum class HSCPlazInstallationMode {
    none, ///< it is not, or nobody knows
    user, ///< the user asked for it
    tool  ///< other items need it
};

/// The mode as it is recorded and shown: "user", "tool"; empty for none.
inline const char* toText(HSCPlazInstallationMode mode) {
    switch (mode) {
    case HSCPlazInstallationMode::user:
        return "user";
    case HSCPlazInstallationMode::tool:
        return "tool";
    case HSCPlazInstallationMode::none:
        break;
    }
    return "";
}

/// The mode of exactly that text; none for every other.
inline HSCPlazInstallationMode toInstallationMode(const std::string& text) {
    for (const auto mode : {HSCPlazInstallationMode::user, HSCPlazInstallationMode::tool})
        if (text == toText(mode)) return mode;
    return HSCPlazInstallationMode::none;
}
