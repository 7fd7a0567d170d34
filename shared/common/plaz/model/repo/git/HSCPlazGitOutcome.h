#pragma once

#include "plaz/model/repo/git/HSCPlazGitRunner.h"

#include <optional>

/// What came of an operation of the repository.
struct HSCPlazGitOutcome {
    bool isDone = false;
    HSCPlazReport report;       ///< what is to be told of it, git's own words among it
    std::optional<HEXAll> ends; ///< the failure that ended it, where one did
    bool isExplained = false;   ///< the report says more of that failure than it does itself

    /// All that is to be told, the failure included where nothing says more.
    HSCPlazReport getWhole() const {
        HSCPlazReport whole = report;
        if (ends && !isExplained) whole.add(*ends);
        return whole;
    }

    /// Does @p work(HSCPlazReport&), which answers whether it was done. What it adds to the report is kept also when it
    /// throws.
    template <typename Work> static HSCPlazGitOutcome of(Work work) {
        HSCPlazGitOutcome outcome;
        try {
            outcome.isDone = work(outcome.report);
        } catch (const HSCPlazGitFailure& failure) {
            outcome.ends = failure;
            outcome.isExplained = !failure.getDetails().isEmpty();
            outcome.report.append(failure.getDetails());
        } catch (const HEXAll& failure) {
            outcome.ends = failure;
        }
        return outcome;
    }
};
