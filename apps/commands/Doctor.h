#pragma once

#include <optional>
#include <string>
#include <vector>

class HDGUIStatus;
class HSCPlaz;
class HSCPlazQStore;

/// What one check found.
struct Finding {
    enum class State {
        ok,
        warning, ///< works, but not as one might expect
        problem  ///< something cannot work until it is mended
    };

    State state;
    std::string subject; ///< "git", "store boards: catalog"
    std::string found;
    std::string advice;              ///< what to do; empty where nothing is to be done
    std::optional<int> milliseconds; ///< how long a remote took

    /// "ok", "warning", "problem".
    static const char* nameOf(State state);
};

/// Looks at what the hub stands on: git, certificates, proxy, switches, directories, files, stores and remotes. Changes
/// nothing but for a directory in the system's temporary one that is gone at the end. Sends what the hub's files make
/// it send; secrets appear in no finding.
class Doctor {
public:
    /// @param status  progress and cancellation. Both must outlive the object.
    Doctor(const HSCPlaz& hub, HDGUIStatus& status) : m_hub(hub), m_status(status) {}

    /// Checks everything of the hub's own, and these of its stores. What remains is left out on cancellation. Remotes
    /// are left out where there is no git to ask them with or a switch forbids it, which is found to be a problem then.
    std::vector<Finding> examine(const std::vector<HSCPlazQStore*>& stores) const;

private:
    const HSCPlaz& m_hub;
    HDGUIStatus& m_status;
};
