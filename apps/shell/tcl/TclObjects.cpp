#include "TclObjects.h"

#include "HubQueries.h"
#include "ShellMsg.h"
#include "TclCall.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/bindings/HSCPlazScriptCaches.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"

#include <algorithm>

namespace {

template <typename Native> using Cache = hdi::tcltasks::native_cache<Native*>;

bool isLatest(const HSCPlazQItem& item) {
    return !item.getModel() || item.getModel()->getRevision() == item.getModel()->getLatestRevision();
}

bool isInOtherStore(const HSCPlazQItem& item, const std::string& name) {
    const HSCPlazQStore* own = item.getStore();
    if (!own || !own->getHub()) return false;
    const auto& stores = own->getHub()->getStores();
    return std::any_of(stores.begin(), stores.end(),
                       [&](const HSCPlazQStore* store) { return store != own && store->getItem(name); });
}

std::string referenceTo(const HSCPlazQStore& store) {
    return store.getName();
}

std::string referenceTo(const HSCPlazQItem& item) {
    ItemReference reference{{}, item.getName(), {}};
    const bool isStoreNeeded = reference.name.find("::") != std::string::npos || isInOtherStore(item, reference.name);
    if (isStoreNeeded) reference.store = item.getStoreName();
    // An "@" in the name would begin a revision.
    if (!isLatest(item) || reference.name.rfind('@') != std::string::npos) reference.revision = item.getRevision();
    return reference.toText();
}

template <typename Native> Tcl_Obj* findOrMake(Native& native) {
    auto& scripts = Cache<Native>::get_n2t_cache();
    if (Tcl_Obj* known = Cache<Native>::tables::find_script(scripts, &native)) return known;
    Tcl_Obj* script = makeText(referenceTo(native));
    Cache<Native>::add(&native, script);
    return script;
}

bool isInvalid(Tcl_Obj* object) {
    return hdi::tcltasks::native_cache_base::is_invalid(object);
}

/// The elements of a word that is no object: it may be a list, or one text.
std::vector<Tcl_Obj*> split(Tcl_Obj* word, bool (*isName)(const std::string& text)) {
    int count = 0;
    Tcl_Obj** elements = nullptr;
    if (Tcl_ListObjGetElements(nullptr, word, &count, &elements) != TCL_OK) return {word};
    const bool holdsObjects = std::any_of(elements, elements + count, isScriptObject);
    if (!holdsObjects && count != 0 && isName(textOf(word))) return {word};
    return {elements, elements + count};
}

} // namespace

HSCPlaz& requireHub() {
    HSCPlaz& hub = HSCPlazMgr::getInstance().getHub();
    if (!HubQueries(hub).hasHub()) failTcl("", ShellMsg::hubNotFound);
    return hub;
}

Tcl_Obj* scriptOf(HSCPlazQStore& store) {
    return findOrMake(store);
}

Tcl_Obj* scriptOf(HSCPlazQItem& item) {
    return findOrMake(item);
}

template <typename Native> Tcl_Obj* makeObjectList(const std::vector<Native*>& natives) {
    std::vector<Tcl_Obj*> scripts;
    scripts.reserve(natives.size());
    for (Native* native : natives) scripts.push_back(scriptOf(*native));
    return Tcl_NewListObj(static_cast<int>(scripts.size()), scripts.data());
}

template Tcl_Obj* makeObjectList(const std::vector<HSCPlazQStore*>& natives);
template Tcl_Obj* makeObjectList(const std::vector<HSCPlazQItem*>& natives);

template <typename Native> Native* findNative(Tcl_Obj* object) {
    return Cache<Native>::tables::find_native(Cache<Native>::get_t2n_cache(), object);
}

template HSCPlazQStore* findNative(Tcl_Obj* object);
template HSCPlazQItem* findNative(Tcl_Obj* object);

bool isScriptObject(Tcl_Obj* object) {
    return findNative<HSCPlazQItem>(object) || isInvalid(object) || findNative<HSCPlazQStore>(object);
}

std::string Meant::getText() const {
    return textOf(word);
}

Meant readOne(Tcl_Obj* word) {
    if (HSCPlazQItem* item = findNative<HSCPlazQItem>(word)) return {word, nullptr, item};
    if (isInvalid(word)) failTcl("STALE", ShellMsg::objectGone, textOf(word));
    return {word, findNative<HSCPlazQStore>(word), nullptr};
}

std::vector<Meant> readMeant(const std::vector<Tcl_Obj*>& words, bool (*isName)(const std::string& text)) {
    std::vector<Meant> meant;
    meant.reserve(words.size());
    for (Tcl_Obj* word : words) {
        if (isScriptObject(word))
            meant.push_back(readOne(word));
        else
            for (Tcl_Obj* one : split(word, isName)) meant.push_back(readOne(one));
    }
    return meant;
}

bool namesItem(const std::string& text) {
    const auto reference = ItemReference::parse(text);
    if (!reference) return false;
    ItemQuery query;
    query.allRevisions = true;
    const auto isMeant = [&](const HSCPlazQItem& item) {
        return item.getName() == reference->name &&
               (reference->store.empty() || item.getStoreName() == reference->store);
    };
    return !HubQueries(requireHub()).selectItems(query, isMeant).empty();
}

bool namesStore(const std::string& text) {
    return requireHub().getStore(text) != nullptr;
}

ItemReference requireReference(const std::string& text) {
    const auto reference = ItemReference::parse(text);
    if (!reference) failTcl("", ShellMsg::notAReference, text);
    return *reference;
}

HSCPlazQStore& requireStore(const Meant& meant) {
    if (meant.item) failTcl("", ShellMsg::objectOfOtherKind, meant.getText(), "an item, not a store");
    return meant.store ? *meant.store : HubQueries(requireHub()).getStore(meant.getText());
}

HSCPlazQItem& requireItem(const Meant& meant) {
    if (meant.store) failTcl("", ShellMsg::objectOfOtherKind, meant.getText(), "a store, not an item");
    if (meant.item) return *meant.item;
    return HubQueries(requireHub()).resolve(requireReference(meant.getText()), "");
}
