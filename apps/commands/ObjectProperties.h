#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

class HSCPlazQItem;
class HSCPlazQStore;

/// The value of one property: a text, a truth value, a number or a list of texts.
using PropertyValue = std::variant<std::string, bool, std::int64_t, std::vector<std::string>>;

/// One property of stores or items, as scripts see it.
template <typename Native> struct Property {
    const char* name;        ///< lower case with underscores; Tcl takes it in any case
    const char* description; ///< one sentence, without a full stop
    PropertyValue (*get)(const Native& native);
};

/// The properties of a class, in the order in which they are listed.
template <typename Native> const std::vector<Property<Native>>& propertiesOf();
template <> const std::vector<Property<HSCPlazQStore>>& propertiesOf();
template <> const std::vector<Property<HSCPlazQItem>>& propertiesOf();

/// The property of that name, in any case; null when there is none.
template <typename Native> const Property<Native>* findProperty(const std::string& name);
