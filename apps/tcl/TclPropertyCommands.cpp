#include "Failure.h"
#include "Glob.h"
#include "HubPreferences.h"
#include "ObjectProperties.h"
#include "Secrets.h"
#include "ShellMsg.h"
#include "TclCall.h"
#include "TclObjects.h"
#include "TclText.h"
#include "TextTable.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HCCXPrefMgr.h"
#include "support/HUTText.h"

#include <algorithm>

namespace {

using Texts = std::vector<std::string>;

// What current_solvan_preferences returns. It is no reference, so that no item can be meant by it.
constexpr const char* preferencesText = "::plaz::preferences";
const Texts preferenceNames{HSCPlazName::storesPath, HSCPlazName::httpProxy};

/// What properties are asked of: a store, an item or, both null, the preferences.
struct Object {
    HSCPlazQStore* store;
    HSCPlazQItem* item;
};

bool namesObject(const std::string& text) {
    return text == preferencesText || namesStore(text) || namesItem(text);
}

Object readObject(const Meant& meant) {
    if (meant.store || meant.item) return {meant.store, meant.item};
    const std::string text = meant.getText();
    if (text == preferencesText) return {};
    if (HSCPlazQStore* store = requireHub().getStore(text)) return {store, nullptr};
    return {nullptr, &requireItem(meant)};
}

std::vector<Object> readObjects(const std::vector<Tcl_Obj*>& words) {
    std::vector<Object> objects;
    for (const Meant& meant : readMeant(words, namesObject)) objects.push_back(readObject(meant));
    return objects;
}

template <typename Native> Texts namesOf() {
    Texts names;
    for (const auto& property : propertiesOf<Native>()) names.push_back(HUTText::raised(property.name));
    return names;
}

Texts namesOf(const Object& object) {
    if (object.store) return namesOf<HSCPlazQStore>();
    if (object.item) return namesOf<HSCPlazQItem>();
    Texts names;
    for (const std::string& name : preferenceNames) names.push_back(HUTText::raised(name));
    return names;
}

[[noreturn]] void failUnknown(const Object& object, const std::string& name) {
    std::string known;
    for (const std::string& one : namesOf(object)) known += (known.empty() ? "" : ", ") + one;
    failWith(ShellMsg::propertyUnknown, cutName(name), known);
}

const std::string& findPreference(const std::string& name) {
    const auto found = std::find_if(preferenceNames.begin(), preferenceNames.end(),
                                    [&](const std::string& known) { return HUTText::equalIgnoringCase(known, name); });
    if (found == preferenceNames.end()) failUnknown({}, name);
    return *found;
}

/// The text that is in force: the first of a preference's list that says something.
PropertyValue preferenceOf(const std::string& name) {
    const std::string& known = findPreference(name);
    const Texts values = HCCXPrefMgr::getInstance().getDefaultXPref().getVal(known);
    const auto first = std::find_if(values.begin(), values.end(), [](const auto& value) { return !value.empty(); });
    return first == values.end() ? std::string() : shownValue(known, *first);
}

template <typename Native> PropertyValue valueOf(const Object& object, const Native& native, const std::string& name) {
    const Property<Native>* property = findProperty<Native>(name);
    if (!property) failUnknown(object, name);
    return property->get(native);
}

PropertyValue valueOf(const Object& object, const std::string& name) {
    if (object.store) return valueOf(object, *object.store, name);
    if (object.item) return valueOf(object, *object.item, name);
    return preferenceOf(name);
}

struct ToTcl {
    Tcl_Obj* operator()(const std::string& text) const { return makeText(text); }
    Tcl_Obj* operator()(bool truth) const { return Tcl_NewIntObj(truth ? 1 : 0); }
    Tcl_Obj* operator()(std::int64_t number) const { return Tcl_NewWideIntObj(number); }
    Tcl_Obj* operator()(const Texts& texts) const { return makeList(texts); }
};

Tcl_Obj* getProperty(const TclCall& call) {
    call.expectWords(2, 2);
    const std::string name = textOf(call.getWords()[0]);
    Tcl_Obj* const word = call.getWords()[1];
    if (isScriptObject(word)) return std::visit(ToTcl(), valueOf(readObject(readOne(word)), name));
    const std::vector<Object> objects = readObjects({word});
    if (objects.size() == 1) return std::visit(ToTcl(), valueOf(objects.front(), name));
    std::vector<PropertyValue> values;
    for (const Object& object : objects) values.push_back(valueOf(object, name));
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    for (const PropertyValue& value : values) Tcl_ListObjAppendElement(nullptr, list, std::visit(ToTcl(), value));
    return list;
}

/// The objects that the last word of set_property means.
/// RATIONALE: where they were forgotten that word is the value, which may be a secret: it is not repeated.
std::vector<Object> readChangedObjects(Tcl_Obj* word) {
    std::vector<Object> objects;
    for (const Meant& meant : readMeant({word}, namesObject)) {
        if (!meant.store && !meant.item && !namesObject(meant.getText())) failWith(ShellMsg::objectsForgotten);
        objects.push_back(readObject(meant));
    }
    if (objects.empty()) failWith(ShellMsg::nothingNamed);
    return objects;
}

/// RATIONALE: the words between name and objects are one value, joined by single blanks, and none is the empty text:
/// user interfaces put paths into the command as they are.
Tcl_Obj* setProperty(const TclCall& call) {
    const std::vector<Tcl_Obj*>& words = call.getWords();
    call.expectWords(2, words.size());
    const std::string name = textOf(words.front());
    const std::string value = call.joinWords(1, words.size() - 1);
    for (const Object& object : readChangedObjects(words.back())) {
        valueOf(object, name);
        if (object.store || object.item) failWith(ShellMsg::propertyReadOnly, HUTText::raised(name));
    }
    savePreference(findPreference(name), {value});
    return Tcl_NewIntObj(1);
}

Object readOneObject(const TclCall& call) {
    call.expectWords(1, 2);
    const std::vector<Object> objects = readObjects({call.getWords().front()});
    if (objects.size() != 1) failWith(ShellMsg::notOneObject, std::to_string(objects.size()));
    return objects.front();
}

/// The names of the object's properties that the command's pattern, if there is one, fits in any case.
Texts selectNames(const TclCall& call, const Object& object) {
    Texts names = namesOf(object);
    if (call.getWords().size() < 2) return names;
    const std::string pattern = HUTText::raised(textOf(call.getWords()[1]));
    const auto isOther = [&](const std::string& name) { return !fitsGlob(pattern, name); };
    names.erase(std::remove_if(names.begin(), names.end(), isOther), names.end());
    return names;
}

Tcl_Obj* listProperty(const TclCall& call) {
    return makeList(selectNames(call, readOneObject(call)));
}

Tcl_Obj* reportProperty(const TclCall& call) {
    const Object object = readOneObject(call);
    TextTable table({"PROPERTY", "VALUE"});
    for (const std::string& name : selectNames(call, object)) {
        const TclRef value(std::visit(ToTcl(), valueOf(object, name)));
        std::string text = textOf(value.get());
        std::replace(text.begin(), text.end(), '\n', ' ');
        table.addRow({name, text});
    }
    return makeText(table.toText());
}

Tcl_Obj* preferences(const TclCall& call) {
    call.expectWords(0, 0);
    return makeText(preferencesText);
}

} // namespace

std::vector<std::string> listPropertyNames() {
    Texts names = namesOf(Object{});
    for (const Texts& more : {namesOf<HSCPlazQStore>(), namesOf<HSCPlazQItem>()})
        names.insert(names.end(), more.begin(), more.end());
    return names;
}

const std::vector<TclCommand>& propertyCommands() {
    static const std::vector<TclCommand> commands{
        {"get_property", "name objects",
         "The value of a property: of one store, item or the preferences, else a list of the values of all. Truth "
         "values are 0 and 1.",
         tclOptions({}), TclSubject::objects, false, getProperty},
        {"set_property", "name ?value ...? objects",
         "Sets a property. Only the preferences can be set: see current_solvan_preferences. Several words are one "
         "value.",
         tclOptions({}), TclSubject::objects, true, setProperty},
        {"list_property", "object ?pattern?", "The names of the properties of a store, an item or the preferences.",
         tclOptions({}), TclSubject::objects, false, listProperty},
        {"report_property", "object ?pattern?", "A table of the properties of a store, an item or the preferences.",
         tclOptions({}), TclSubject::objects, false, reportProperty},
        {"current_solvan_preferences", "", "The user's preferences, whose properties can be set.", tclOptions({}),
         TclSubject::nothing, false, preferences},
    };
    return commands;
}
