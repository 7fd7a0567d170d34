#include "HubQueries.h"
#include "NameSelection.h"
#include "PropertyFilter.h"
#include "ShellMsg.h"
#include "TclCall.h"
#include "TclObjects.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"

#include <algorithm>
#include <optional>

namespace {

using Names = std::unordered_set<std::string>;

/// The names under which patterns find an item: plain, as commands use it and behind its store's.
std::vector<std::string> namesOf(const HSCPlazQItem& item) {
    return {item.getName(), item.getItemName(), item.getStoreName() + "::" + item.getName()};
}

/// The names that the patterns mean. Each pattern that means nothing is reported.
Names select(const TclCall& call, const Names& known, const char* kind) {
    std::vector<std::string> patterns;
    for (Tcl_Obj* word : call.getWords()) patterns.push_back(textOf(word));
    NameSelection selection = NameSelection::of(patterns, known);
    for (const std::string& pattern : selection.unmatched)
        ComMsgMgr::send(ShellMsg::nothingFits, MsgSeverity::warning, kind, pattern);
    return std::move(selection.names);
}

Tcl_Obj* getStores(const TclCall& call) {
    std::vector<HSCPlazQStore*> stores = requireHub().getStores();
    if (!call.getWords().empty()) {
        Names known;
        for (const HSCPlazQStore* store : stores) known.insert(store->getName());
        const Names wanted = select(call, known, "store");
        const auto isOther = [&](const HSCPlazQStore* store) { return wanted.count(store->getName()) == 0; };
        stores.erase(std::remove_if(stores.begin(), stores.end(), isOther), stores.end());
    }
    return makeObjectList(stores);
}

std::string readStore(const TclCall& call) {
    Tcl_Obj* word = call.getValue("-store");
    if (!word) return {};
    const std::vector<Meant> meant = readMeant({word}, namesStore);
    if (meant.size() != 1) failTcl("", ShellMsg::notOneStore, textOf(word));
    return requireStore(meant.front()).getName();
}

ItemQuery readQuery(const TclCall& call) {
    ItemQuery query;
    query.store = readStore(call);
    query.installed = call.has("-installed");
    query.outdated = call.has("-outdated");
    query.allRevisions = call.has("-all_revisions");
    return query;
}

/// The names that the patterns mean among those of the stores in question; nothing without patterns.
std::optional<Names> selectItemNames(const TclCall& call, const HubQueries& queries, const ItemQuery& query) {
    if (call.getWords().empty()) return std::nullopt;
    Names known;
    for (const HSCPlazQStore* store : queries.getScope(query.store))
        for (const HSCPlazQItem* item : store->getItems())
            for (std::string& name : namesOf(*item)) known.insert(std::move(name));
    return select(call, known, "item");
}

Tcl_Obj* getItems(const TclCall& call) {
    const HubQueries queries(requireHub());
    const ItemQuery query = readQuery(call);
    std::optional<PropertyFilter> filter;
    if (Tcl_Obj* text = call.getValue("-filter")) filter.emplace(textOf(text));
    const std::optional<Names> wanted = selectItemNames(call, queries, query);
    const auto fits = [&](const HSCPlazQItem& item) {
        const auto isWanted = [&](const std::string& name) { return wanted->count(name) != 0; };
        if (wanted) {
            const std::vector<std::string> names = namesOf(item);
            if (std::none_of(names.begin(), names.end(), isWanted)) return false;
        }
        return !filter || filter->fits(item);
    };
    const bool isAll = !wanted && !filter;
    return makeObjectList(queries.selectItems(query, isAll ? std::function<bool(const HSCPlazQItem&)>() : fits));
}

} // namespace

const std::vector<TclCommand>& catalogCommands() {
    static const std::vector<TclCommand> commands{
        {"plaz::get_qstores",
         "?pattern ...?",
         "The stores, all or those whose names fit a pattern (* ? [a-z]).",
         {{"-help", nullptr, "Show this help"}, {nullptr, nullptr, nullptr}},
         PlazCommand::Subject::stores,
         false,
         getStores},
        {"plaz::get_qitems",
         "?-store store? ?-filter expression? ?-all_revisions? ?-installed? ?-outdated? ?pattern ...?",
         "The items in catalog order, each by its latest revision: all or those whose names, or STORE::NAME, fit a "
         "pattern (* ? [a-z]).",
         {{"-store", "store", "Look in this store only"},
          {"-filter", "expression", "Only items that fulfil it, such as {installed && company =~ Sample*}"},
          {"-all_revisions", nullptr, "Every revision instead of one for each item"},
          {"-installed", nullptr, "Only what is installed"},
          {"-outdated", nullptr, "Only what is installed and has an update"},
          {"-help", nullptr, "Show this help"},
          {nullptr, nullptr, nullptr}},
         PlazCommand::Subject::items,
         false,
         getItems},
    };
    return commands;
}
