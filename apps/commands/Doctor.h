#pragma once

#include "Finding.h"

#include <string>
#include <vector>

class HDGUIStatus;
class HSCPlaz;
class HSCPlazQStore;

/// Whether a message of that number tells that git has failed, so that the doctor may find the cause.
bool isOfGit(const std::string& messageId);

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
