#include "HubQueries.h"

#include "Categories.h"
#include "Failure.h"
#include "Glob.h"
#include "ItemFilter.h"
#include "ItemSearch.h"
#include "Nearness.h"
#include "ShellMsg.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HUTText.h"

#include <algorithm>

namespace {

using Stores = std::vector<HSCPlazQStore*>;

constexpr const char* patternSigns = "*?[";

std::string joinWords(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

std::string joinQuoted(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "\"" : ", \"") + word + '"';
    return text;
}

bool fitsAnItem(const std::string& pattern, const Stores& scope) {
    ItemQuery query;
    query.pattern = pattern;
    return std::any_of(scope.begin(), scope.end(), [&](const HSCPlazQStore* store) {
        const ItemFilter filter(query, *store);
        return std::any_of(store->getItems().begin(), store->getItems().end(),
                           [&](const HSCPlazQItem* item) { return filter.fits(*item); });
    });
}

/// Whether one word, which is no item's name, was meant as a name or pattern all the same.
bool isMeantAsPattern(const std::string& word) {
    return word.find_first_of(patternSigns) != std::string::npos || word.find("::") != std::string::npos;
}

bool isNameOrPattern(const std::vector<std::string>& terms, const std::string& text, const Stores& scope) {
    if (terms.size() == 1) return fitsAnItem(text, scope) || isMeantAsPattern(text);
    return std::any_of(scope.begin(), scope.end(),
                       [&](const HSCPlazQStore* store) { return !store->getItems(text).empty(); });
}

[[noreturn]] void failUnknown(const char* kind, const std::string& name, const std::vector<std::string>& known) {
    const std::string near = joinNearNames(name, known);
    if (near.empty()) failWith(ShellMsg::nameUnknown, kind, name, joinNames(known));
    failWith(ShellMsg::nameUnknownNear, kind, name, near, joinNames(known));
}

void requireCategory(const std::string& category, const Stores& scope) {
    const std::vector<std::string> known = findCategoryNames(scope);
    if (std::find(known.begin(), known.end(), category) == known.end()) failUnknown("category", category, known);
}

/// The name that a pattern was perhaps meant to be: without a store, the signs of a pattern and a revision.
std::string nameIn(const std::string& pattern) {
    const auto reference = ItemReference::parse(pattern);
    std::string name = reference ? reference->name : pattern;
    const auto isSign = [](char c) { return std::string(patternSigns).find(c) != std::string::npos || c == ']'; };
    name.erase(std::remove_if(name.begin(), name.end(), isSign), name.end());
    return name;
}

/// The state that a query asks for, as its messages call it; null for none.
const char* stateOf(const ItemQuery& query) {
    if (query.outdated) return "out of date";
    return query.installed ? "installed" : nullptr;
}

NothingListed describeNoneInState(const ItemQuery& query) {
    if (!query.store.empty()) return {messageOf(ShellMsg::noneInStateOfStore, query.store, stateOf(query)), false};
    return {query.outdated ? messageOf(ShellMsg::nothingToUpdate) : messageOf(ShellMsg::nothingInstalled), false};
}

} // namespace

void HubQueries::requireProduct(const std::string& product) const {
    std::vector<std::string> known;
    for (const HSCPlazQStore* store : m_hub.getStores())
        for (const std::string& name : store->getModel()->getProducts())
            if (std::find(known.begin(), known.end(), name) == known.end()) known.push_back(name);
    const auto isSame = [&](const std::string& name) { return HUTText::equalIgnoringCase(name, product); };
    if (!known.empty() && std::none_of(known.begin(), known.end(), isSame))
        failUnknown("store for the product", product, known);
}

UnderstoodQuery HubQueries::understand(ItemQuery query) const {
    const Stores scope = getScope(query.store);
    if (!query.category.empty()) requireCategory(query.category, scope);
    UnderstoodQuery understood{std::move(query), {}};
    ItemQuery& taken = understood.query;
    const std::string text = joinWords(taken.terms);
    if (!text.empty() && isNameOrPattern(taken.terms, text, scope)) {
        taken.pattern = text;
    } else if (!text.empty()) {
        addWords(text, taken.words);
        understood.notes.push_back(messageOf(ShellMsg::termsSearched, text));
    }
    if (!taken.words.empty()) taken.replaced = ItemSearch::findReplacements(taken.words, scope);
    for (const auto& [word, others] : taken.replaced)
        understood.notes.push_back(messageOf(ShellMsg::wordReplaced, word, joinQuoted(others)));
    return understood;
}

NothingListed HubQueries::describeNothing(const ItemQuery& query) const {
    const Stores scope = getScope(query.store);
    const bool isNamed = !query.pattern.empty() || !query.words.empty() || !query.category.empty();
    if (!isNamed && stateOf(query)) return describeNoneInState(query);
    if (!isNamed) return {messageOf(ShellMsg::nothingOffered), false};
    if (!query.pattern.empty() && !fitsAnItem(query.pattern, scope)) {
        const std::size_t separator = query.pattern.find("::");
        const std::string store = query.pattern.substr(0, separator);
        if (separator != std::string::npos &&
            std::none_of(scope.begin(), scope.end(), [&](auto* one) { return fitsGlob(store, one->getName()); }))
            throwUnknownStore(store);
        return {describeUnknown(query.pattern, nameIn(query.pattern), scope), true};
    }
    ItemQuery inAnyState = query;
    inAnyState.installed = inAnyState.outdated = false;
    if (stateOf(query) && !selectItems(inAnyState, {}).empty())
        return {messageOf(ShellMsg::noneInState, stateOf(query)), true};
    if (query.pattern.empty() && query.category.empty())
        return {messageOf(ShellMsg::nothingMentions, joinWords(query.words)), true};
    return {messageOf(ShellMsg::noItemFits), true};
}
