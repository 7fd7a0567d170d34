#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

class HSCPlazModel;

/// The stores that the user has added, in a file that no refresh touches. It is written as the hub's metadata is, and
/// read with the same checks.
class HSCPlazOwnStores {
public:
    explicit HSCPlazOwnStores(std::string file) : m_file(std::move(file)) {}

    const std::string& getFile() const { return m_file; }
    /// @return the stores, each marked as the user's; isUnread() where the file cannot be read as a whole, which is
    ///         reported
    std::unique_ptr<HSCPlazModel> read(HSCPlazReport& report) const;
    /// Replaces the file. @return false when it could not be written
    bool write(const HSCPlazModel& stores) const;

    /// Adds to a hub those stores whose names it does not have. @return false where not all may have been read
    bool addTo(HSCPlazModel& hub, HSCPlazReport& report) const;
    /// The names of those of which a hub has one of its own.
    std::vector<std::string> findHidden(const HSCPlazModel& hub) const;

private:
    std::string m_file;
};
