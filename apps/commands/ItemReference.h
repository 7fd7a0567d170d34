#pragma once

#include <optional>
#include <string>

class HSCPlazQItem;

/// Names an item as people write it: "ITEM", "ITEM@REVISION", each with "STORE::" before it where wanted.
struct ItemReference {
    std::string store;    ///< empty: any store
    std::string name;     ///< never empty
    std::string revision; ///< empty: none was named

    /// Takes a reference apart: the store ends at the first "::", the revision begins after the last "@".
    /// An "@" at the very beginning belongs to the name, and so does one in a name behind which no revision is named:
    /// "a@b@" is the item "a@b".
    /// @return nothing when a part that the text announces is empty
    static std::optional<ItemReference> parse(const std::string& text);
    /// The reference that names exactly @p item.
    static ItemReference of(const HSCPlazQItem& item);

    /// "STORE::ITEM@REVISION", without the parts that are empty. What parse() reads as the same again.
    std::string toText() const;
};
