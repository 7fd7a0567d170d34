#include "ItemReference.h"

#include "plaz/model/HSCPlazQItem.h"

namespace {

/// Whether what stands behind the last "@" would be read as a revision.
bool holdsRevision(const std::string& name) {
    const std::size_t at = name.rfind('@');
    return at != std::string::npos && at > 0;
}

} // namespace

std::optional<ItemReference> ItemReference::parse(const std::string& text) {
    ItemReference reference;
    reference.name = text;
    const std::size_t storeEnd = text.find("::");
    if (storeEnd != std::string::npos) {
        reference.store = text.substr(0, storeEnd);
        reference.name = text.substr(storeEnd + 2);
        if (reference.store.empty()) return std::nullopt;
    }
    if (holdsRevision(reference.name)) {
        const std::size_t at = reference.name.rfind('@');
        reference.revision = reference.name.substr(at + 1);
        reference.name.resize(at);
        if (reference.revision.empty() && !holdsRevision(reference.name)) return std::nullopt;
    }
    if (reference.name.empty()) return std::nullopt;
    return reference;
}

ItemReference ItemReference::of(const HSCPlazQItem& item) {
    return {item.getStoreName(), item.getName(), item.getRevision()};
}

std::string ItemReference::toText() const {
    std::string text = store;
    if (!store.empty()) text += "::";
    text += name;
    if (!revision.empty() || holdsRevision(name)) text.append("@").append(revision);
    return text;
}
