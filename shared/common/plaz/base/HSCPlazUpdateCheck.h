#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <optional>
#include <string>

/// What a look at a store's remote found out.
struct HSCPlazUpdateCheck {
    std::optional<bool> moved; ///< what git printed, as far as it tells anything
    std::string reason;        ///< why that is not to be relied on, secrets masked; empty when it is
    HSCPlazReport details{};   ///< what is to be told of it beside the reason

    /// Whether the remote has moved; nothing when that is not known.
    std::optional<bool> getAnswer() const { return reason.empty() ? moved : std::nullopt; }
    /// What git printed tells of nothing new, and is not to be relied on.
    bool hasFailed() const { return !moved.value_or(false) && !reason.empty(); }
};
