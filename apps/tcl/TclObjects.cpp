#include "TclObjects.h"

#include "Failure.h"
#include "HubQueries.h"
#include "ShellMsg.h"
#include "TclText.h"

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

/// The elements of a list. Nothing for a text that is none.
std::vector<Tcl_Obj*> elementsOf(Tcl_Obj* list) {
    int count = 0;
    Tcl_Obj** elements = nullptr;
    if (Tcl_ListObjGetElements(nullptr, list, &count, &elements) != TCL_OK) return {};
    return {elements, elements + count};
}

/// Whether it is a list with objects in it, or in lists in it. A text that would only read as a list holds none.
bool holdsObjects(Tcl_Obj* word) {
    static const Tcl_ObjType* const listType = Tcl_GetObjType("list");
    if (word->typePtr != listType) return false;
    const std::vector<Tcl_Obj*> elements = elementsOf(word);
    return std::any_of(elements.begin(), elements.end(),
                       [](Tcl_Obj* element) { return isScriptObject(element) || holdsObjects(element); });
}

/// What a word stands for that is no object and holds none: the elements of a list, or one text.
std::vector<Tcl_Obj*> split(Tcl_Obj* word, bool (*isName)(const std::string& text)) {
    int count = 0;
    if (Tcl_ListObjLength(nullptr, word, &count) != TCL_OK || (count != 0 && isName(textOf(word)))) return {word};
    return elementsOf(word);
}

} // namespace

HSCPlaz& requireHub() {
    HSCPlaz& hub = HSCPlazMgr::getInstance().getHub();
    if (!HubQueries(hub).hasHub()) failWith(ShellMsg::hubNotFound);
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

std::vector<Tcl_Obj*> flatten(const std::vector<Tcl_Obj*>& words) {
    std::vector<Tcl_Obj*> flat;
    for (Tcl_Obj* word : words) {
        const std::vector<Tcl_Obj*> parts =
            holdsObjects(word) ? flatten(elementsOf(word)) : std::vector<Tcl_Obj*>{word};
        flat.insert(flat.end(), parts.begin(), parts.end());
    }
    return flat;
}

Meant readOne(Tcl_Obj* word) {
    if (HSCPlazQItem* item = findNative<HSCPlazQItem>(word)) return {word, nullptr, item};
    if (isInvalid(word)) failWith(ShellMsg::objectGone, textOf(word));
    return {word, findNative<HSCPlazQStore>(word), nullptr};
}

std::vector<Meant> readMeant(const std::vector<Tcl_Obj*>& words, bool (*isName)(const std::string& text)) {
    std::vector<Meant> meant;
    meant.reserve(words.size());
    for (Tcl_Obj* word : words) {
        const bool isText = !isScriptObject(word) && !holdsObjects(word);
        for (Tcl_Obj* one : isText ? split(word, isName) : flatten({word})) meant.push_back(readOne(one));
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
    if (!reference) failWith(ShellMsg::notAReference, text);
    return *reference;
}

HSCPlazQStore& requireStore(const Meant& meant) {
    if (meant.item) failWith(ShellMsg::objectOfOtherKind, meant.getText(), "an item, not a store");
    return meant.store ? *meant.store : HubQueries(requireHub()).getStore(meant.getText());
}

HSCPlazQItem& requireItem(const Meant& meant) {
    if (meant.store) failWith(ShellMsg::objectOfOtherKind, meant.getText(), "a store, not an item");
    if (meant.item) return *meant.item;
    return HubQueries(requireHub()).resolve(requireReference(meant.getText()), "");
}
