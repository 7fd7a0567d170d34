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

    /// What became of the stores when a hub was built.
    struct Added {
        bool isWhole = true;             ///< else not all may have been read
        std::vector<std::string> hidden; ///< names of those of which the hub has one of its own
    };
    /// Adds to a hub those stores whose names it does not have.
    Added addTo(HSCPlazModel& hub, HSCPlazReport& report) const;

private:
    std::string m_file;
};
