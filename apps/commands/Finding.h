#pragma once

#include <optional>
#include <string>

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
