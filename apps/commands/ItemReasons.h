#pragma once

#include <string>
#include <vector>

class HSCPlaz;
class HSCPlazQItem;

/// Why an item is installed.
struct ItemReason {
    HSCPlazQItem* item; ///< borrowed from its store, like the others
    bool isAskedFor;    ///< the user asked for it
    /// For each item that the user asked for and that needs it: the shortest way along dependencies, from that one to
    /// this item.
    std::vector<std::vector<HSCPlazQItem*>> chains;

    /// For people, a sentence for each reason: "You asked for A, which needs B."
    std::vector<std::string> describe() const;

    /// @param item  installed
    static ItemReason of(const HSCPlaz& hub, HSCPlazQItem& item);
};
