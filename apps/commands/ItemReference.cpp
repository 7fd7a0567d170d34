#include "ItemReference.h"

#include "plaz/model/HSCPlazQItem.h"

std::optional<ItemReference> ItemReference::parse(const std::string& text) {
    ItemReference reference;
    reference.name = text;
    const std::size_t storeEnd = text.find("::");
    if (storeEnd != std::string::npos) {
        reference.store = text.substr(0, storeEnd);
        reference.name = text.substr(storeEnd + 2);
        if (reference.store.empty()) return std::nullopt;
    }
    const std::size_t at = reference.name.rfind('@');
    if (at != std::string::npos && at > 0) {
        reference.revision = reference.name.substr(at + 1);
        reference.name.resize(at);
        if (reference.revision.empty()) return std::nullopt;
    }
    if (reference.name.empty() || reference.name == "@") return std::nullopt;
    return reference;
}

ItemReference ItemReference::of(const HSCPlazQItem& item) {
    return {item.getStoreName(), item.getName(), item.getRevision()};
}

std::string ItemReference::toText() const {
    std::string text = store;
    if (!store.empty()) text += "::";
    text += name;
    if (!revision.empty()) text.append("@").append(revision);
    return text;
}
