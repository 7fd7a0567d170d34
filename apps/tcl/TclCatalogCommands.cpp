#include "Categories.h"
#include "Failure.h"
#include "HubQueries.h"
#include "ItemSearch.h"
#include "NameSelection.h"
#include "Nearness.h"
#include "PropertyFilter.h"
#include "ShellMsg.h"
#include "TclCall.h"
#include "TclObjects.h"
#include "TclText.h"

#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace {

using Names = std::unordered_set<std::string>;
using Items = std::vector<HSCPlazQItem*>;

constexpr CommandOption filterOption{"filter", "EXPRESSION",
                                     "Only items that fulfil it, such as {installed && company =~ Sample*}"};

constexpr CommandOption searchOption{"search", "WORDS",
                                     "Only items that mention all these words, those first that fit them best"};

constexpr CommandOption sortOption{"sort", "ORDER", "In this order: name, relevance, revision or store"};
constexpr CommandOption limitOption{"limit", "N", "No more than so many items"};

std::string qualifiedName(const HSCPlazQItem& item) {
    return item.getStoreName() + "::" + item.getName();
}

/// The names that the patterns mean. Each pattern that means nothing is reported.
Names select(const std::vector<std::string>& patterns, const Names& known, const char* kind) {
    NameSelection selection = NameSelection::of(patterns, known);
    for (const std::string& pattern : selection.unmatched) {
        const std::string near = joinNearNames(pattern, {known.begin(), known.end()});
        const std::string shown = HSCPlazTrust::maskSecrets(pattern);
        ComMsgMgr::send(near.empty() ? messageOf(ShellMsg::nothingFits, kind, shown)
                                     : messageOf(ShellMsg::nothingFitsNear, kind, shown, near),
                        MsgSeverity::warning);
    }
    return std::move(selection.names);
}

/// A store's object means that store by its name.
Tcl_Obj* getStores(const TclCall& call) {
    std::vector<HSCPlazQStore*> stores = HubQueries(requireHub()).getScope("");
    if (!call.getWords().empty()) {
        Names known;
        for (const HSCPlazQStore* store : stores) known.insert(store->getName());
        std::vector<std::string> patterns;
        for (Tcl_Obj* word : flatten(call.getWords())) {
            const Meant meant = readOne(word);
            patterns.push_back(meant.item ? requireStore(meant).getName() : meant.getText());
        }
        const Names wanted = select(patterns, known, "store");
        const auto isOther = [&](const HSCPlazQStore* store) { return wanted.count(store->getName()) == 0; };
        stores.erase(std::remove_if(stores.begin(), stores.end(), isOther), stores.end());
    }
    return makeObjectList(stores);
}

std::string readStore(const TclCall& call) {
    Tcl_Obj* word = call.getValue(commandOptions::store);
    if (!word) return {};
    const std::vector<Meant> meant = readMeant({word}, namesStore);
    if (meant.size() != 1) failWith(ShellMsg::notOneStore, textOf(word));
    return requireStore(meant.front()).getName();
}

ItemQuery readQuery(const TclCall& call) {
    ItemQuery query;
    query.store = readStore(call);
    query.installed = call.has(commandOptions::installed);
    query.outdated = call.has(commandOptions::outdated);
    query.allRevisions = call.has(commandOptions::allRevisions);
    if (Tcl_Obj* words = call.getValue(searchOption)) addWords(textOf(words), query.words);
    if (Tcl_Obj* order = call.getValue(sortOption)) {
        const auto found = ItemQuery::orders().find(textOf(order));
        if (found == ItemQuery::orders().end())
            failWith(ShellMsg::nameUnknown, "order", textOf(order), ItemQuery::orderNames());
        query.order = found->second;
    }
    return query;
}

/// Tells what people should know of how a query is understood.
ItemQuery takeUnderstood(UnderstoodQuery understood) {
    for (const ComMsgMgrInstance& note : understood.notes) ComMsgMgr::send(note, MsgSeverity::info);
    return std::move(understood.query);
}

/// What the words of get_qitems mean: names and patterns, and revisions that are objects or named as such.
class WantedItems {
public:
    /// @param entries  the items in question
    WantedItems(const std::vector<Tcl_Obj*>& words, const Items& entries) {
        Names plain;
        Names known;
        for (const HSCPlazQItem* item : entries) {
            plain.insert({item->getName(), item->getItemName()});
            known.insert(qualifiedName(*item));
        }
        known.insert(plain.begin(), plain.end());
        std::vector<std::string> patterns;
        for (Tcl_Obj* word : flatten(words)) {
            const Meant meant = readOne(word);
            if (meant.store || meant.item) {
                m_revisions.insert(&requireItem(meant));
                continue;
            }
            const std::string text = meant.getText();
            if (plain.count(text) != 0) m_plainOnly.insert(text);
            if (known.count(text) != 0 || !addRevisions(text, entries)) patterns.push_back(text);
        }
        m_names = select(patterns, known, "item");
    }

    const std::set<const HSCPlazQItem*>& getRevisions() const { return m_revisions; }
    bool fits(const HSCPlazQItem& item) const {
        if (m_names.count(item.getName()) != 0 || m_names.count(item.getItemName()) != 0) return true;
        const std::string qualified = qualifiedName(item);
        return m_names.count(qualified) != 0 && m_plainOnly.count(qualified) == 0;
    }

private:
    /// @return false when the text names no revision
    bool addRevisions(const std::string& text, const Items& entries) {
        const auto reference = ItemReference::parse(text);
        if (!reference || reference->revision.empty()) return false;
        const std::size_t before = m_revisions.size();
        for (const HSCPlazQItem* item : entries)
            if (item->getName() == reference->name && item->getRevision() == reference->revision &&
                (reference->store.empty() || item->getStoreName() == reference->store))
                m_revisions.insert(item);
        return m_revisions.size() > before;
    }

    Names m_names;
    Names m_plainOnly; ///< the words that are a name as a whole, whatever stores' names they hold
    std::set<const HSCPlazQItem*> m_revisions;
};

/// As many as are wanted.
Tcl_Obj* makeItems(const TclCall& call, Items items) {
    if (Tcl_Obj* limit = call.getValue(limitOption)) {
        int most = 0;
        if (Tcl_GetIntFromObj(nullptr, limit, &most) != TCL_OK || most < 1)
            failWith(ShellMsg::nameUnknown, "limit", textOf(limit), "1, 2 and so on");
        if (items.size() > static_cast<std::size_t>(most)) items.resize(static_cast<std::size_t>(most));
    }
    return makeObjectList(items);
}

Tcl_Obj* getItems(const TclCall& call) {
    const HubQueries queries(requireHub());
    ItemQuery query = takeUnderstood(queries.understand(readQuery(call)));
    std::optional<PropertyFilter> filter;
    if (Tcl_Obj* text = call.getValue(filterOption)) filter.emplace(textOf(text));
    const auto passes = [&](const HSCPlazQItem& item) { return !filter || filter->fits(item); };
    if (call.getWords().empty())
        return makeItems(call,
                         queries.selectItems(query, filter ? passes : std::function<bool(const HSCPlazQItem&)>()));
    ItemQuery everything;
    everything.store = query.store;
    everything.allRevisions = true;
    const WantedItems wanted(call.getWords(), queries.selectItems(everything, {}));
    std::set<const HSCPlazQItem*> found = wanted.getRevisions();
    for (const HSCPlazQItem* item :
         queries.selectItems(query, [&](const auto& one) { return wanted.fits(one) && passes(one); }))
        found.insert(item);
    query.allRevisions = true;
    return makeItems(
        call, queries.selectItems(query, [&](const auto& one) { return found.count(&one) != 0 && passes(one); }));
}

/// Each as a dictionary; the names are those of the program's JSON.
Tcl_Obj* getCategories(const TclCall& call) {
    call.expectWords(0, 0);
    Tcl_Obj* categories = Tcl_NewListObj(0, nullptr);
    for (const HSCPlazQStore* store : HubQueries(requireHub()).getScope(readStore(call)))
        for (const ListedCategory& category : findCategories(*store)) {
            Tcl_Obj* dict = Tcl_NewDictObj();
            for (const auto& [key, value] : {std::pair("store", category.store),
                                             {"name", category.name},
                                             {"display_name", category.displayName},
                                             {"description", category.description},
                                             {"parent", category.parent},
                                             {"item_count", std::to_string(category.items)}})
                Tcl_DictObjPut(nullptr, dict, makeText(key), makeText(value));
            Tcl_ListObjAppendElement(nullptr, categories, dict);
        }
    return categories;
}

} // namespace

const std::vector<TclCommand>& catalogCommands() {
    static const std::vector<TclCommand> commands{
        {"plaz::get_qstores", "?pattern ...?", "The stores, all or those whose names fit a pattern (* ? [a-z]).",
         tclOptions({}), TclSubject::stores, false, getStores},
        {"plaz::get_qitems", "?pattern ...?",
         "The items in catalog order, each by its latest revision: all or those whose names, or STORE::NAME, fit a "
         "pattern (* ? [a-z]). An object, or a name with @REVISION, means that very revision.",
         tclOptions({commandOptions::store, filterOption, searchOption, commandOptions::allRevisions,
                     commandOptions::installed, commandOptions::outdated, sortOption, limitOption}),
         TclSubject::items, false, getItems},
        {"plaz::categories", "", "The stores' categories: a dictionary for each.", tclOptions({commandOptions::store}),
         TclSubject::nothing, false, getCategories},
    };
    return commands;
}
