#include "ActOnEach.h"
#include "HubQueries.h"
#include "MessageWatch.h"
#include "ShellMsg.h"
#include "TclCall.h"
#include "TclObjects.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"

#include <algorithm>

namespace {

using Items = std::vector<HSCPlazQItem*>;
using Stores = std::vector<HSCPlazQStore*>;
using Resolve = HSCPlazQItem& (HubQueries::*)(const ItemReference&, const std::string&) const;

template <typename Native> void addOnce(std::vector<Native*>& natives, Native& native) {
    if (std::find(natives.begin(), natives.end(), &native) == natives.end()) natives.push_back(&native);
}

[[noreturn]] void failCancelled() {
    failTcl("CANCELLED", ShellMsg::cancelled);
}

/// Ends a command of which something failed, with the first error that was sent meanwhile.
[[noreturn]] void failAction(const TclCall& call, const MessageWatch& watch) {
    if (call.getStatus().isCanceled()) failCancelled();
    const ComMsgMgr::Message* error = watch.getFirstError();
    if (!error) failTcl("", Msg::unexpectedFailure, "no reason was given");
    throw TclFailure{error->text, error->id};
}

/// Does @p action to all. @return how many that were
/// @param watch  began with the command
template <typename Native, typename Action>
Tcl_Obj* act(const TclCall& call, const std::vector<Native*>& natives, Action action, const MessageWatch& watch) {
    if (natives.empty()) failTcl("", ShellMsg::nothingNamed);
    HubActions actions(requireHub(), call.has("-quiet"), &call.getStatus());
    const auto results = actOnEach(actions, natives, call.getStatus(), action, {});
    if (results.size() < natives.size() || !areDone(results)) failAction(call, watch);
    return Tcl_NewIntObj(static_cast<int>(results.size()));
}

std::vector<Meant> readItems(const TclCall& call) {
    call.expectWords(1, call.getWords().size());
    return readMeant(call.getWords(), namesItem);
}

Tcl_Obj* install(const TclCall& call) {
    Items items;
    for (const Meant& meant : readItems(call)) addOnce(items, requireItem(meant));
    return act(call, items, &HubActions::install, MessageWatch(call.has("-quiet")));
}

bool hasInstalled(const HSCPlazQItem& item) {
    const auto& entries = item.getStore()->getItems();
    return std::any_of(entries.begin(), entries.end(), [&](const HSCPlazQItem* entry) {
        return entry->IsInstalled() && entry->getName() == item.getName();
    });
}

/// The installed revisions that words mean: @p resolve says which where a revision that is not installed, or none, was
/// named.
/// RATIONALE: a list of objects, as a look-up by name or pattern gives it, may hold items that are not installed; they
/// are passed over where others are. A text that means one is an error, as in the program.
Items resolveInstalled(const TclCall& call, Resolve resolve) {
    const HubQueries queries(requireHub());
    Items items;
    std::string notInstalled;
    for (const Meant& meant : readItems(call)) {
        if (!meant.item) {
            if (meant.store) requireItem(meant);
            addOnce(items, (queries.*resolve)(requireReference(meant.getText()), ""));
        } else if (meant.item->IsInstalled()) {
            addOnce(items, *meant.item);
        } else if (hasInstalled(*meant.item)) {
            addOnce(items, (queries.*resolve)({{}, meant.item->getName(), {}}, meant.item->getStoreName()));
        } else if (notInstalled.empty()) {
            notInstalled = ItemReference::of(*meant.item).toText();
        }
    }
    if (items.empty() && !notInstalled.empty()) failTcl("", Msg::itemNotInstalled, notInstalled);
    return items;
}

Tcl_Obj* uninstall(const TclCall& call) {
    return act(call, resolveInstalled(call, &HubQueries::resolveInstalled), removeTogether,
               MessageWatch(call.has("-quiet")));
}

Tcl_Obj* update(const TclCall& call) {
    return act(call, resolveInstalled(call, &HubQueries::resolveForUpdate), &HubActions::update,
               MessageWatch(call.has("-quiet")));
}

Tcl_Obj* refreshHub(const TclCall& call, const std::vector<std::string>& names) {
    const MessageWatch watch(call.has("-quiet"));
    const auto failed = HubActions(requireHub(), call.has("-quiet"), &call.getStatus()).refreshHub();
    if (!failed) failAction(call, watch);
    const auto describe = [&](HubActions& actions, HSCPlazQStore& store) {
        return actions.describe(store, failed->count(store.getName()) == 0);
    };
    return act(call, HubQueries(requireHub()).getStores(names, *failed), describe, watch);
}

Tcl_Obj* refresh(const TclCall& call) {
    const std::vector<Tcl_Obj*>& words = call.getWords();
    std::vector<std::string> names;
    const bool isHub = call.has("-hub");
    Stores stores;
    for (const Meant& meant : readMeant(words, namesStore)) {
        names.push_back(isHub && !meant.store && !meant.item ? meant.getText() : requireStore(meant).getName());
        if (!isHub) addOnce(stores, requireStore(meant));
    }
    if (!words.empty() && names.empty()) failTcl("", ShellMsg::nothingNamed);
    if (isHub) return refreshHub(call, names); // a name may be one that the hub learns of only then
    return act(call, words.empty() ? requireHub().getStores() : stores, &HubActions::refresh,
               MessageWatch(call.has("-quiet")));
}

TclCommand actionCommand(const char* name, const char* description, Tcl_Obj* (*run)(const TclCall&)) {
    return {
        name,
        "?-quiet? items ...",
        description,
        {{"-quiet", nullptr, "Leave out good news"}, {"-help", nullptr, "Show this help"}, {nullptr, nullptr, nullptr}},
        PlazCommand::Subject::items,
        false,
        run};
}

} // namespace

const std::vector<TclCommand>& actionCommands() {
    static const std::vector<TclCommand> commands{
        actionCommand("plaz::install", "Installs items and what they need. The result is how many were named.",
                      install),
        actionCommand("plaz::uninstall",
                      "Removes items and what nothing else needs. The result is how many were named.", uninstall),
        actionCommand("plaz::update", "Brings installed items up to date. The result is how many were named.", update),
        {"plaz::refresh_catalog",
         "?-quiet? ?-hub? ?stores ...?",
         "Fetches the catalogs of stores, all without a word, and what they say of items, which are new objects then. "
         "The "
         "result is how many stores were fetched.",
         {{"-hub", nullptr, "Fetch the hub's own metadata first, and with it all catalogs; all objects are new then"},
          {"-quiet", nullptr, "Leave out good news"},
          {"-help", nullptr, "Show this help"},
          {nullptr, nullptr, nullptr}},
         PlazCommand::Subject::stores,
         false,
         refresh},
    };
    return commands;
}
