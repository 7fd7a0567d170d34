#include "Failure.h"
#include "HubActions.h"
#include "HubQueries.h"
#include "ShellMsg.h"
#include "TclCall.h"
#include "TclObjects.h"
#include "TclText.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HDGUIStatus.h"

#include <algorithm>

namespace {

using Items = std::vector<HSCPlazQItem*>;
using Stores = std::vector<HSCPlazQStore*>;

HubActions makeActions(const TclCall& call) {
    return HubActions(requireHub(), call.getStatus(), {call.has(commandOptions::quiet)});
}

/// The result of a command is how many parts it had; one of which something failed ends with the reason.
template <typename Result> Tcl_Obj* answer(const TclCall& call, const CommandResult<Result>& result) {
    if (result.isDone) return Tcl_NewIntObj(static_cast<int>(result.parts.size()));
    if (call.getStatus().isCanceled()) failWith(ShellMsg::cancelled);
    if (!result.reason) failWith(Msg::unexpectedFailure, "no reason was given");
    throw HEXAll(*result.reason);
}

template <typename Native> const std::vector<Native*>& requireSome(const std::vector<Native*>& natives) {
    if (natives.empty()) failWith(ShellMsg::nothingNamed);
    return natives;
}

std::vector<Meant> readItems(const TclCall& call) {
    call.expectWords(1, call.getWords().size());
    return readMeant(call.getWords(), namesItem);
}

Tcl_Obj* install(const TclCall& call) {
    Items items;
    for (const Meant& meant : readItems(call)) addOnce(items, requireItem(meant));
    return answer(call, makeActions(call).install(requireSome(items)));
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
Items resolveInstalled(const TclCall& call, HubQueries::Resolve resolve) {
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
    if (items.empty() && !notInstalled.empty()) failWith(Msg::itemNotInstalled, notInstalled);
    return items;
}

Tcl_Obj* uninstall(const TclCall& call) {
    const Items items = resolveInstalled(call, &HubQueries::resolveInstalled);
    return answer(call, makeActions(call).uninstall(requireSome(items)));
}

Tcl_Obj* update(const TclCall& call) {
    const Items items = resolveInstalled(call, &HubQueries::resolveForUpdate);
    return answer(call, makeActions(call).update(requireSome(items)));
}

Tcl_Obj* refresh(const TclCall& call) {
    const std::vector<Tcl_Obj*>& words = call.getWords();
    std::vector<std::string> names;
    const bool isHub = call.has(commandOptions::hub);
    Stores stores;
    for (const Meant& meant : readMeant(words, namesStore)) {
        names.push_back(isHub && !meant.store && !meant.item ? meant.getText() : requireStore(meant).getName());
        if (!isHub) addOnce(stores, requireStore(meant));
    }
    if (!words.empty() && names.empty()) failWith(ShellMsg::nothingNamed);
    if (isHub) return answer(call, makeActions(call).refreshHub(names));
    return answer(call, makeActions(call).refresh(requireSome(words.empty() ? requireHub().getStores() : stores)));
}

TclCommand actionCommand(const char* name, const char* description, Tcl_Obj* (*run)(const TclCall&)) {
    return {name, "items ...", description, tclOptions({commandOptions::quiet}), TclSubject::items, false, run};
}

} // namespace

const std::vector<TclCommand>& actionCommands() {
    static const std::vector<TclCommand> commands{
        actionCommand("plaz::install", "Installs items and what they need. The result is how many were named.",
                      install),
        actionCommand("plaz::uninstall",
                      "Removes items and what nothing else needs. The result is how many were named.", uninstall),
        actionCommand("plaz::update", "Brings installed items up to date. The result is how many were named.", update),
        {"plaz::refresh_catalog", "?stores ...?",
         "Fetches the catalogs of stores, all without a word, and what they say of items, which are new objects then; "
         "with -hub the stores are, too. The result is how many stores were fetched.",
         tclOptions({commandOptions::quiet, commandOptions::hub}), TclSubject::stores, false, refresh},
    };
    return commands;
}
