#pragma once

#include <cstddef>

class HSCPlazQStore;

/// How many items a store offers and how many of them are installed, whatever the number of their revisions.
struct StoreSummary {
    std::size_t items = 0;
    std::size_t installed = 0;

    static StoreSummary of(const HSCPlazQStore& store);
};
