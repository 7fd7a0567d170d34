#pragma once

#include "plaz/base/HSCPlazTrustRules.h"

#include <rapidjson/document.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

/// Tables of text members, so that a reader walks each object once and says in one line where a member goes.
namespace HSCPlazJson {

using Member = rapidjson::Value::Member;

/// The string; empty for a value of another type.
inline std::string_view textOf(const rapidjson::Value& value) {
    return value.IsString() ? std::string_view(value.GetString(), value.GetStringLength()) : std::string_view();
}

inline bool isNamed(const Member& member, std::string_view name) {
    return textOf(member.name) == name;
}

/// A text member and the setter that takes it.
template <typename Model> struct TextField {
    std::string_view key;
    void (Model::*set)(const std::string&);
    const HSCPlazTrustRule* rule = nullptr; ///< what the text must be to be used; null where any text will do
};

template <typename Model, std::size_t count>
const TextField<Model>* findField(const TextField<Model> (&fields)[count], std::string_view name) {
    for (const TextField<Model>& field : fields)
        if (field.key == name) return &field;
    return nullptr;
}

/// Hands a member to the setter of its name, if there is one, as the rule has it; whether it may be used is not asked.
/// @param scratch  any string; kept between calls so that its memory is
template <typename Model, std::size_t count>
bool fillField(const TextField<Model> (&fields)[count], const Member& member, Model& model, std::string& scratch) {
    const TextField<Model>* field = findField(fields, textOf(member.name));
    if (!field) return false;
    scratch = textOf(member.value);
    scratch = HSCPlazTrustRules::toUsed(field->rule, std::move(scratch));
    (model.*field->set)(scratch);
    return true;
}

/// Hands every member of an object to its setter; a value that is no object has none.
template <typename Model, std::size_t count>
void fillFields(const TextField<Model> (&fields)[count], const rapidjson::Value& object, Model& model) {
    if (!object.IsObject()) return;
    std::string scratch;
    for (const Member& member : object.GetObject()) fillField(fields, member, model, scratch);
}

/// Sets the field, or empties it where its text may not be used. @return why it may not
template <typename Model> std::string setChecked(const TextField<Model>& field, const std::string& text, Model& model) {
    const std::string refusal =
        field.rule ? HSCPlazTrustRules::findRefusal(*field.rule, field.key, text) : std::string();
    (model.*field.set)(refusal.empty() ? HSCPlazTrustRules::toUsed(field.rule, text) : std::string());
    return refusal;
}

/// Why the first member that breaks its rule is not used; empty when all may be.
template <typename Model, std::size_t count>
std::string findRefusal(const TextField<Model> (&fields)[count], const rapidjson::Value& object) {
    if (!object.IsObject()) return {};
    for (const Member& member : object.GetObject()) {
        const TextField<Model>* field = findField(fields, textOf(member.name));
        if (!field || !field->rule) continue;
        std::string refusal =
            HSCPlazTrustRules::findRefusal(*field->rule, field->key, std::string(textOf(member.value)));
        if (!refusal.empty()) return refusal;
    }
    return {};
}

} // namespace HSCPlazJson
