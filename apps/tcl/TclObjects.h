#pragma once

#include "ItemReference.h"

#include <string>
#include <tcl.h>
#include <vector>

class HSCPlaz;
class HSCPlazQItem;
class HSCPlazQStore;

// The script objects that stand for stores and items. What one stands for is found by the object itself, not by its
// text, so that it keeps its identity in variables and lists. The text is a reference that finds the same thing again:
// a store's name, or an item's with the revision where it is not the latest one and the store where the name alone
// would not do.

/// The hub. @throws HEXAll when there is none
HSCPlaz& requireHub();

/// The object that stands for a store or an item; the same one each time.
Tcl_Obj* scriptOf(HSCPlazQStore& store);
Tcl_Obj* scriptOf(HSCPlazQItem& item);
/// A list of them.
template <typename Native> Tcl_Obj* makeObjectList(const std::vector<Native*>& natives);

/// What the object stands for; null when it stands for no such thing.
template <typename Native> Native* findNative(Tcl_Obj* object);
/// Whether it stands, or stood, for a store or an item.
bool isScriptObject(Tcl_Obj* object);

/// One thing that a word of a command means: a store, an item or, both null, what its text says.
struct Meant {
    Tcl_Obj* word;
    HSCPlazQStore* store;
    HSCPlazQItem* item;

    std::string getText() const;
};

/// The words, with the elements of lists that hold objects, at any depth, in the place of those lists.
std::vector<Tcl_Obj*> flatten(const std::vector<Tcl_Obj*>& words);
/// What a word means that is an object, or a text as a whole.
/// @throws HEXAll for an object whose store or item is gone
Meant readOne(Tcl_Obj* word);
/// The things that words of a command mean: each is one of them or a list, of lists where these hold objects. A text
/// with blanks is one thing where it is a name as a whole, else a list.
/// @param isName  whether a text is one
/// @throws HEXAll for an object whose store or item is gone
std::vector<Meant> readMeant(const std::vector<Tcl_Obj*>& words, bool (*isName)(const std::string& text));

/// Whether the text names an item (of any revision) or a store.
bool namesItem(const std::string& text);
bool namesStore(const std::string& text);

/// Takes a reference apart. @throws HEXAll for a text that is none
ItemReference requireReference(const std::string& text);

/// @throws HEXAll for an item, and for a text that names no store
HSCPlazQStore& requireStore(const Meant& meant);
/// @throws HEXAll for a store, for a text that is no reference, and for one that means no one item
HSCPlazQItem& requireItem(const Meant& meant);
